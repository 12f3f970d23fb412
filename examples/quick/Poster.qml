import QtQuick
import Gallery

// A poster. While it has no picture, a throbber turns in its place.
Rectangle {
    id: card

    property alias source: picture.source

    implicitWidth: 200
    implicitHeight: 112
    color: "#1a3350"

    PosterItem {
        id: picture

        anchors.fill: parent
    }

    ThrobberItem {
        anchors.centerIn: parent
        width: 48
        height: 48
        color: "#ffb454"
        visible: !picture.hasPicture
    }
}
