pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Gallery

Rectangle {
    id: gallery

    readonly property string description: "Путешествие на воздушном шаре: четыре исследователя " +
        "поднимаются над тайгой, чтобы увидеть месторождения, до которых нет дорог."
    property int columnWidth: 360

    width: 960
    height: 420
    color: "#10243a"
    focus: true

    Keys.onLeftPressed: columnWidth = Math.max(120, columnWidth - 20)
    Keys.onRightPressed: columnWidth = Math.min(420, columnWidth + 20)
    Keys.onUpPressed: posters.limit = Math.min(4, posters.limit + 1)
    Keys.onDownPressed: posters.limit = Math.max(0, posters.limit - 1)
    Keys.onEscapePressed: Qt.quit()

    PosterLimit {
        id: posters

        limit: 3
    }

    component Caption: TextItem {
        font.pixelSize: 14
        color: "#8fa6bd"
    }

    component Description: TextItem {
        Layout.fillWidth: true
        text: gallery.description
        font.pixelSize: 22
        color: "#f4f7fa"
    }

    ColumnLayout {
        id: texts

        x: 40
        y: 32
        width: gallery.columnWidth

        Caption { text: "Four lines, hyphenated" }
        Description { maximumLineCount: 4 }
        Caption { text: "Four lines, without hyphens" }
        Description { maximumLineCount: 4; hyphenation: false }
        Caption { text: "One line" }
        Description { }
    }

    // The edge at which the texts are broken.
    Rectangle {
        anchors { left: texts.right; top: texts.top; bottom: texts.bottom }
        width: 1
        color: "#ffb454"
    }

    ColumnLayout {
        anchors { right: parent.right; rightMargin: 40; top: texts.top }

        Caption { text: "The application allows " + posters.limit + " of 4 pictures" }

        GridLayout {
            columns: 2

            Poster { source: "qrc:/gallery/balloon.png" }
            Poster { source: "qrc:/gallery/dam.png" }
            Poster { source: "qrc:/gallery/forest.png" }
            Poster { source: "qrc:/gallery/icebreaker.png" }
        }
    }

    Caption {
        anchors { left: texts.left; bottom: parent.bottom; bottomMargin: 24 }
        text: "←  →  the width of the texts      ↑  ↓  the number of pictures      Esc  the end"
    }
}
