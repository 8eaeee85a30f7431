#include <ondrel/color/colortransformer.h>
#include <ondrel/core/platform.h>
#include <ondrel/core/xml.h>
#include <ondrel/widgets/imagelistview.h>
#include <ondrel/widgets/thumbnailcombobox.h>

#include <QIcon>
#include <QPainter>
#include <QScrollBar>
#include <QTime>
#include <QTimer>

#include <algorithm>

namespace Ondrel
{
namespace
{

constexpr int kCell = 182;
constexpr int kIcon = 60;
constexpr int kIconAt = kCell / 2 - kIcon / 2;

QImage emptyCell()
{
    QImage cell(kCell, kCell, QImage::Format_ARGB32_Premultiplied);
    cell.fill(Qt::transparent);
    return cell;
}

// Scaled down to the cell if need be, and centred in it.
QImage thumbnailCell(QImage image)
{
    if (image.width() > kCell)
        image = image.scaledToWidth(kCell, Qt::SmoothTransformation);
    if (image.height() > kCell)
        image = image.scaledToHeight(kCell, Qt::SmoothTransformation);
    QImage cell = emptyCell();
    QPainter(&cell).drawImage((kCell - image.width()) / 2, (kCell - image.height()) / 2, image);
    return cell;
}

} // namespace

ThumbnailComboBox::ThumbnailComboBox(QWidget* parent)
    : ComboBoxBase(parent)
    , m_loadingTimer(new QTimer(this))
    , m_workQueue(nullptr)
    , m_listView(new ImageListView(nullptr)) // the box takes it as its view
{
    m_listView->hide();
    m_listView->setIconSize(QSize(kCell, kCell));
    setView(m_listView);
    m_listView->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // the box turns it off in its own popup
    const QString text = palette().color(QPalette::Text).name();   // so that dark icons fit the theme
    const QString icons = Platform::IconsDirectory();
    LoadSvgWithReplace(m_unavailableRenderer, icons + QStringLiteral("thumbnail_unavailable.svg"),
                       QStringLiteral("#000000"), text);
    LoadSvgWithReplace(m_loadingRenderer, icons + QStringLiteral("node_loading.svg"), QStringLiteral("#000000"), text);
    connect(&m_workQueue, SIGNAL(qImageFinished(QImage, int, QVariant)), this,
            SLOT(imageFinished(QImage, int, QVariant)));
    connect(m_loadingTimer, SIGNAL(timeout()), this, SLOT(updateLoadingAnimation()));
}

void ThumbnailComboBox::setRequestedThumbnail(unsigned int index, const std::shared_ptr<const Ondrel::Image>& image)
{
    const std::function<QImage()> job = [image] {
        return image ? ColorTransformer::toQImage(*image, false) : QImage();
    };
    m_workQueue.queueWork(job, 0, false, false, QVariant(int(index)));
}

QSize ThumbnailComboBox::calculatePopupSize()
{
    return QSize(643 + m_listView->verticalScrollBar()->sizeHint().width(), 408);
}

void ThumbnailComboBox::showPopup()
{
    Q_EMIT thumbnailsRequested();
    m_popupOpen = true;
    m_waitingForThumbnail.assign(std::size_t(count()), true);
    m_loadingTimer->start(100);
    ComboBoxBase::showPopup();
}

void ThumbnailComboBox::hidePopup()
{
    ComboBoxBase::hidePopup();
    for (int i = 0; i < count(); ++i)
        setItemIcon(i, QIcon());
}

void ThumbnailComboBox::imageFinished(QImage image, int, const QVariant& userData)
{
    const int index = userData.toInt();
    if (image.isNull()) {
        QImage cell = emptyCell();
        QPainter painter(&cell);
        m_unavailableRenderer.render(&painter, QRectF(kIconAt, kIconAt, kIcon, kIcon));
        painter.end();
        m_listView->setItemIcon(index, cell);
    } else {
        m_listView->setItemIcon(index, thumbnailCell(image));
    }
    if (index >= 0 && std::size_t(index) < m_waitingForThumbnail.size())
        m_waitingForThumbnail[std::size_t(index)] = false;
    if (std::find(m_waitingForThumbnail.begin(), m_waitingForThumbnail.end(), true) == m_waitingForThumbnail.end())
        m_loadingTimer->stop();
}

void ThumbnailComboBox::updateLoadingAnimation()
{
    if (!m_popupOpen)
        return;
    QImage cell = emptyCell();
    QPainter painter(&cell);
    painter.translate(kCell / 2.0, kCell / 2.0);
    painter.rotate(QTime::currentTime().msec() / 1000.0 * 360.0); // one turn a second, by the clock
    painter.translate(-kIcon / 2.0, -kIcon / 2.0);
    m_loadingRenderer.render(&painter, QRectF(0, 0, kIcon, kIcon));
    painter.end();
    for (std::size_t i = 0; i < m_waitingForThumbnail.size(); ++i) {
        if (m_waitingForThumbnail[i])
            m_listView->setItemIcon(int(i), cell);
    }
}

} // namespace Ondrel
