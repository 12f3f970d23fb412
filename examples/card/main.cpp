// Draws a card for a programme into card.png.

#include <ovelin/abstractresourceowner.h>
#include <ovelin/brushes.h>
#include <ovelin/sceneresourcetracker.h>
#include <ovelin/textrenderer.h>
#include <ovelin/throbberrenderer.h>

#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>

#include <cstdio>

// An item on the screen. The item registers its picture, and creates the picture when it is allowed to.
class Poster : public QObject, public ovelin::AbstractResourceOwner
{
public:
    Poster() { registerImage(1, QUrl("qrc:/poster.png")); }

    QObject *resourceOwnerObject() override { return this; }
    void allowResources() override
    {
        m_image = QImage(120, 180, QImage::Format_RGB32);
        m_image.fill(QColor("#8c4a2f"));
    }
    void releaseResources() override { m_image = {}; }
    const QImage &image() const { return m_image; }

private:
    QImage m_image;
};

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen"); // needs no display
    const QGuiApplication application(argc, argv);

    // Resources: the application decides which items may hold pictures.
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    const Poster poster;
    const auto owners = tracker.owners(); // a copy: an owner that is allowed may unregister itself
    for (const auto &[owner, state] : owners) {
        tracker.setStatus(state, ovelin::ResourceOwnerState::CreationAllowed);
        tracker.allowResources(state);
    }

    // Graphics: a gradient across the card is rendered once into a texture 8 pixels high.
    QImage card(480, 220, QImage::Format_RGB32);
    QPainter painter(&card);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient gradient(0, 0, card.width(), 0);
    gradient.setColorAt(0, QColor("#16324f"));
    gradient.setColorAt(1, QColor("#0b1626"));
    painter.fillRect(card.rect(), ovelin::createTexturedBrush({card.width(), 8}, gradient));
    painter.drawImage(20, 20, poster.image());

    // Text: laid out once, painted as often as needed.
    QFont font("DejaVu Sans");
    font.setPixelSize(22);
    ovelin::TextRenderer description;
    description.setTextFont(font);
    description.setTextFormat(Qt::PlainText); // does not read the text as markup
    description.setTextWidth(300);
    description.setMaxLineCount(4);
    description.setText("Путешествие на воздушном шаре: четыре исследователя поднимаются над "
                        "тайгой, чтобы увидеть месторождения, до которых нет дорог.");
    description.setTextTopLeft({160, 16});
    description.relayout();
    painter.setPen(Qt::white);
    description.draw(painter);

    // Throbber: a timer may turn it; the signal updated() tells when to repaint.
    ovelin::ThrobberRenderer throbber;
    throbber.setPenWidth(6);
    throbber.setRenderRect({410, 150, 50, 50});
    throbber.addAngles(300, 120);
    throbber.draw(painter);

    painter.end();
    if (!card.save("card.png"))
        return 1;
    std::printf("card.png: %zu resource, %s, %s\n", tracker.resources().size(),
                poster.isResourcesAllowed() ? "allowed" : "not allowed",
                description.isTextElided() ? "text elided" : "text complete");
    ovelin::setSceneResourceTracker(nullptr);
}
