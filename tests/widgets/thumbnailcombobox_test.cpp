#include "tests/widgets/widgetevents.h"

#include <ondrel/widgets/comboboxpopup.h>
#include <ondrel/widgets/imagelistview.h>
#include <ondrel/widgets/thumbnailcombobox.h>

#include <QPainter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>

namespace
{

using namespace OndrelTest;
using Ondrel::ImageListView;
using Ondrel::ThumbnailComboBox;

constexpr int kCell = 182;

struct Thumbnails : ThumbnailComboBox {
    explicit Thumbnails(int entries = 4)
        : ThumbnailComboBox(nullptr)
    {
        for (int i = 0; i < entries; ++i)
            addItem(QString::number(i));
    }
    bool isOpen() const { return popupFrame && popupFrame->isVisible(); }
    QImage cell(int row) const { return itemData(row, Qt::DecorationRole).value<QImage>(); }
    bool isLoading() const
    {
        for (const QTimer* timer : findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (timer->isActive() && timer->interval() == 100)
                return true;
        }
        return false;
    }
};

QImage plain(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(QColor(10, 200, 30));
    return image;
}

// The rectangle of a picture that is not transparent.
QRect painted(const QImage& image)
{
    QRect result;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 0)
                result |= QRect(x, y, 1, 1);
        }
    }
    return result;
}

TEST(ThumbnailComboBox, IsBuiltAsAGrid)
{
    Thumbnails box;
    const auto* view = qobject_cast<const ImageListView*>(box.view());
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->viewMode(), QListView::IconMode);
    EXPECT_EQ(view->spacing(), 10);
    EXPECT_EQ(view->flow(), QListView::LeftToRight);
    EXPECT_TRUE(view->isWrapping());
    EXPECT_EQ(view->movement(), QListView::Static);
    EXPECT_TRUE(view->uniformItemSizes());
    EXPECT_EQ(view->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(view->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    EXPECT_EQ(view->verticalScrollMode(), QAbstractItemView::ScrollPerPixel);
    EXPECT_EQ(view->horizontalScrollMode(), QAbstractItemView::ScrollPerPixel);
    EXPECT_EQ(view->iconSize(), QSize(kCell, kCell));
    EXPECT_NE(qobject_cast<Ondrel::ImageItemDelegate*>(view->itemDelegateForColumn(0)), nullptr);
    EXPECT_EQ(box.calculatePopupSize(), QSize(643 + view->verticalScrollBar()->sizeHint().width(), 408));
}

TEST(ThumbnailComboBox, PicturesAreScaledIntoTheCell)
{
    const struct {
        QSize picture;
        QRect cell;
    } cases[] = {
        {{100, 60}, {41, 61, 100, 60}}, {{364, 182}, {0, 45, 182, 91}}, {{182, 364}, {45, 0, 91, 182}},
        {{364, 728}, {45, 0, 91, 182}}, {{182, 182}, {0, 0, 182, 182}}, {{1, 1}, {90, 90, 1, 1}},
    };
    for (const auto& c : cases) {
        Thumbnails box;
        box.imageFinished(plain(c.picture.width(), c.picture.height()), 0, 2);
        const QImage cell = box.cell(2);
        ASSERT_EQ(cell.size(), QSize(kCell, kCell));
        EXPECT_EQ(painted(cell), c.cell);
        EXPECT_EQ(cell.pixelColor(c.cell.center()), QColor(10, 200, 30));
        EXPECT_TRUE(box.cell(1).isNull());
    }
}

TEST(ThumbnailComboBox, NoPictureShowsTheUnavailableIcon)
{
    Thumbnails box;
    box.imageFinished(QImage(), 0, 1);
    const QImage cell = box.cell(1);
    ASSERT_EQ(cell.size(), QSize(kCell, kCell));
    const QRect area = painted(cell);
    EXPECT_FALSE(area.isEmpty());
    EXPECT_TRUE(QRect(61, 61, 60, 60).contains(area));
    bool inTextColor = false;
    const QColor text = box.palette().color(QPalette::Text);
    for (int y = 61; y < 121; ++y)
        for (int x = 61; x < 121; ++x)
            inTextColor |= cell.pixelColor(x, y) == text;
    EXPECT_TRUE(inTextColor);
}

TEST(ThumbnailComboBox, IndicesOutsideAreIgnored)
{
    Thumbnails box(2);
    for (const int index : {-1, 2, 1000000}) {
        box.imageFinished(plain(5, 5), 0, index);
        box.imageFinished(QImage(), 0, index);
    }
    EXPECT_TRUE(box.cell(0).isNull());
    EXPECT_TRUE(box.cell(1).isNull());
    box.imageFinished(plain(5, 5), 0, 1);
    EXPECT_FALSE(box.cell(1).isNull()) << "before the first opening too";
}

TEST(ThumbnailComboBox, OpeningAsksForThumbnailsFirst)
{
    Thumbnails box;
    bool wasOpen = true;
    QObject::connect(&box, &ThumbnailComboBox::thumbnailsRequested, [&] {
        wasOpen = box.isOpen();
        box.imageFinished(plain(5, 5), 0, 0);
    });
    QSignalSpy requested(&box, SIGNAL(thumbnailsRequested()));
    showActive(box);
    box.showPopup();
    EXPECT_EQ(requested.count(), 1);
    EXPECT_FALSE(wasOpen);
    EXPECT_TRUE(box.isOpen());
    EXPECT_TRUE(box.isLoading());
    box.updateLoadingAnimation();
    EXPECT_LE(painted(box.cell(0)).width(), kCell) << "flags are set after the request";
    EXPECT_NE(box.cell(0).pixelColor(91, 91), QColor(10, 200, 30)) << "so the cell waits again";
    box.hidePopup();
}

TEST(ThumbnailComboBox, TheSpinnerPlaysInWaitingCellsOnly)
{
    Thumbnails box;
    box.updateLoadingAnimation();
    EXPECT_TRUE(box.cell(0).isNull()) << "never opened";
    showActive(box);
    box.showPopup();
    box.imageFinished(plain(5, 5), 0, 1);
    box.updateLoadingAnimation();
    EXPECT_EQ(painted(box.cell(1)), QRect(88, 88, 5, 5));
    const QRect spinner = painted(box.cell(0));
    EXPECT_FALSE(spinner.isEmpty());
    EXPECT_TRUE(QRect(48, 48, 86, 86).contains(spinner)) << "the circle around 60 x 60";
    const QImage before = box.cell(0);
    QTRY_VERIFY2(box.cell(0) != before, "the timer turns the spinner");
    for (const int row : {0, 2}) {
        box.imageFinished(plain(5, 5), 0, row);
        EXPECT_TRUE(box.isLoading());
    }
    box.imageFinished(QImage(), 0, 3);
    EXPECT_FALSE(box.isLoading()) << "it stops with the last one";
    box.hidePopup();
}

TEST(ThumbnailComboBox, ClosingResetsTheIconsAndKeepsTheTimer)
{
    Thumbnails box;
    showActive(box);
    box.showPopup();
    box.imageFinished(plain(5, 5), 0, 1);
    box.hidePopup();
    EXPECT_FALSE(box.isOpen());
    EXPECT_TRUE(box.itemIcon(1).isNull());
    EXPECT_TRUE(box.isLoading()) << "until the last thumbnail has come in";
    box.updateLoadingAnimation();
    EXPECT_FALSE(box.cell(0).isNull()) << "and it goes on painting";
    for (int row = 0; row < 4; ++row)
        box.imageFinished(plain(5, 5), 0, row);
    EXPECT_FALSE(box.isLoading());
}

// A picture of one colour, which tells the order in which it came.
std::shared_ptr<const Ondrel::Image> grey(unsigned short value)
{
    auto image = std::make_shared<Ondrel::Image>(4, 4);
    for (std::size_t i = 0; i < std::size_t{4 * 4 * 4}; ++i)
        image->data[i] = i % 4 == 3 ? 65535 : value;
    return image;
}

TEST(ThumbnailComboBox, AThousandThumbnailsFinishInTheirOrder)
{
    constexpr int kCount = 1000;
    Thumbnails box(kCount);
    std::vector<int> order;
    QObject::connect(box.model(), &QAbstractItemModel::dataChanged, [&](const QModelIndex& index) {
        const auto cell = index.data(Qt::DecorationRole).value<QImage>();
        // A picture of 4 x 4 in the centre; the spinner covers neither less nor more.
        if (!cell.isNull() && cell.pixelColor(91, 91).alpha() == 255 && cell.pixelColor(94, 94).alpha() == 0)
            order.push_back(index.row());
    });
    QObject::connect(&box, &ThumbnailComboBox::thumbnailsRequested, [&box] {
        for (unsigned int i = 0; i < kCount; ++i)
            box.setRequestedThumbnail(i, i == 7 ? nullptr : grey(30000));
    });
    box.resize(160, 24);
    box.showPopup();
    EXPECT_TRUE(box.isLoading());
    QTRY_VERIFY2_WITH_TIMEOUT(!box.isLoading(), "the jobs run on threads", 60000);
    ASSERT_EQ(order.size(), kCount - 1U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(std::count(order.begin(), order.end(), 7), 0) << "it has no thumbnail";
    EXPECT_FALSE(box.cell(7).isNull());
    box.hidePopup();
}

TEST(ThumbnailComboBox, MayBeDeletedWhileThumbnailsAreConverted)
{
    auto box = std::make_unique<Thumbnails>(50);
    box->showPopup();
    std::shared_ptr<const Ondrel::Image> image = grey(1);
    const std::weak_ptr<const Ondrel::Image> kept = image;
    for (unsigned int i = 0; i < 50; ++i)
        box->setRequestedThumbnail(i, image);
    image.reset();
    box.reset();
    QTRY_VERIFY(kept.expired()); // jobs of the deleted box are dropped or run out, and nothing reaches it
}

TEST(ThumbnailComboBox, IsPickedInAScene)
{
    const int interval = QApplication::doubleClickInterval();
    QApplication::setDoubleClickInterval(0);
    auto* box = new Thumbnails;
    SceneHost host(box, 0.5, {0, 0});
    box->showPopup();
    ASSERT_TRUE(box->isOpen());
    QApplication::processEvents(); // the double-click interval of no length ends there
    QListView* const view = box->popup()->view();
    const QPoint entry = view->viewport()->mapTo(box->popup(), view->visualRect(box->model()->index(2, 0)).center());
    QGraphicsProxyWidget* const proxy = box->popup()->graphicsProxyWidget();
    ASSERT_NE(proxy, nullptr);
    QTest::mouseClick(host.view.viewport(), Qt::LeftButton, {}, host.view.mapFromScene(proxy->mapToScene(entry)));
    EXPECT_EQ(box->currentIndex(), 2);
    EXPECT_FALSE(box->isOpen());
    QApplication::setDoubleClickInterval(interval);
}

TEST(ImageListView, TheWheelNeverReachesAScene)
{
    Thumbnails box(2);
    auto& view = static_cast<ImageListView&>(*box.view());
    for (const int delta : {120, -120}) {
        QWheelEvent event({5, 5}, {5, 5}, {}, {0, delta}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        event.ignore();
        QApplication::sendEvent(view.viewport(), &event);
        EXPECT_TRUE(event.isAccepted()) << "even at the end";
    }
}

TEST(ImageListView, ShowsNoSelection)
{
    Thumbnails box;
    box.imageFinished(plain(182, 182), 0, 0);
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 200, 220);
    option.decorationSize = QSize(kCell, kCell);
    option.state = QStyle::State_Enabled;
    const auto draw = [&](QStyle::State state) {
        QImage image(200, 220, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        option.state = QStyle::State_Enabled | state;
        box.view()->itemDelegateForColumn(0)->paint(&painter, option, box.model()->index(0, 0));
        return image;
    };
    EXPECT_EQ(draw(QStyle::State_Selected), draw(QStyle::State_None));
}

} // namespace
