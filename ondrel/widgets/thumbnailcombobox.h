#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
#include <ondrel/widgets/comboboxbase.h>
#include <ondrel/work/backgroundworkqueue.h>

#include <QSvgRenderer>

#include <memory>
#include <vector>

class QTimer;

namespace Ondrel
{

class ImageListView;

// A combo box whose popup is a grid of thumbnails, which are converted for the display in the background; a spinner
// turns in the cells that wait for theirs. On thumbnailsRequested(), when the popup opens, the owner hands over the
// images with setRequestedThumbnail(), at once or later.
class ONDREL_EXPORT ThumbnailComboBox : public ComboBoxBase
{
    Q_OBJECT
public:
    explicit ThumbnailComboBox(QWidget* parent);

    // Queues an image for the cell of an entry; they come out in the order in which they were given. A null pointer
    // shows that there is no thumbnail. Pictures over 182 pixels wide or high are scaled down.
    void setRequestedThumbnail(unsigned int index, const std::shared_ptr<const Ondrel::Image>& image);

    QSize calculatePopupSize() override;
    void showPopup() override;
    void hidePopup() override;

Q_SIGNALS:
    void thumbnailsRequested();

public Q_SLOTS:
    void updateLoadingAnimation();
    void imageFinished(QImage image, int priority, const QVariant& userData);

private:
    bool m_popupOpen = false;
    std::vector<bool> m_waitingForThumbnail;
    QSvgRenderer m_unavailableRenderer;
    QSvgRenderer m_loadingRenderer;
    QTimer* m_loadingTimer;
    BackgroundWorkQueue m_workQueue;
    ImageListView* m_listView;
};

} // namespace Ondrel
