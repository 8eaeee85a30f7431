#pragma once

#include <ondrel/ondrel_export.h>

#include <QComboBox>
#include <QSize>

namespace Ondrel
{

class ComboBoxPopup;

// A combo box whose popup also opens in the right place when the box stands in a QGraphicsScene, at the scene's zoom.
// The popup is made anew for each opening. The Delete key is left to the parents, so that a scene can delete the node;
// the Tab key does not leave the box. User-interface thread only.
class ONDREL_EXPORT ComboBoxBase : public QComboBox
{
    Q_OBJECT
public:
    explicit ComboBoxBase(QWidget* parent);
    ~ComboBoxBase() override;
    void showPopup() override;
    void hidePopup() override;
    ComboBoxPopup* popup(); // the one that is open, or a new one
    virtual QSize calculatePopupSize() = 0;

public Q_SLOTS:
    void selectIndex(const QModelIndex& modelIndex); // and closes the popup

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent* event) override;

    ComboBoxPopup* popupFrame = nullptr;
};

} // namespace Ondrel
