#include <ondrel/widgets/comboboxbase.h>
#include <ondrel/widgets/comboboxpopup.h>
#include <ondrel/widgets/widgethelpers.h>

#include <QAbstractItemView>
#include <QGraphicsProxyWidget>
#include <QKeyEvent>
#include <QListView>
#include <QStyleOptionComboBox>
#include <QStylePainter>

namespace Ondrel
{

ComboBoxBase::ComboBoxBase(QWidget* parent)
    : QComboBox(parent)
{
    setAttribute(Qt::WA_NoSystemBackground);
}

// QComboBox deletes its view itself, and so has to have it back.
ComboBoxBase::~ComboBoxBase()
{
    if (!popupFrame)
        return;
    view()->setParent(this);
    delete popupFrame;
}

ComboBoxPopup* ComboBoxBase::popup()
{
    if (!popupFrame) {
        popupFrame = new ComboBoxPopup(this, static_cast<QListView*>(view()));
        connect(popupFrame, SIGNAL(itemSelected(QModelIndex)), this, SLOT(selectIndex(QModelIndex)));
        // A scene that is deleted takes an open popup along.
        connect(popupFrame, &QObject::destroyed, this, [this, frame = popupFrame] {
            if (popupFrame == frame)
                popupFrame = nullptr;
        });
    }
    return popupFrame;
}

void ComboBoxBase::showPopup()
{
    ComboBoxPopup* const frame = popup();
    view()->setCurrentIndex(model()->index(currentIndex(), modelColumn(), rootModelIndex()));
    const QSize size = calculatePopupSize();
    frame->setGeometry(CalculateComboBoxPopupGeometry(this, frame, size));
    view()->show();
    frame->raise();
    frame->show();
    view()->setFocus(Qt::OtherFocusReason);
}

void ComboBoxBase::hidePopup()
{
    if (popupFrame)
        popupFrame->hide();
    if (view()) // a deleted popup has taken it along
        view()->hide();
    setFocus();
    if (popupFrame) {
        view()->setParent(this);
        popupFrame->disconnect(this); // it may outlive this part of the box, as a child of the widget
        popupFrame->deleteLater();
        popupFrame = nullptr;
    }
    QComboBox::hidePopup();
}

void ComboBoxBase::selectIndex(const QModelIndex& modelIndex)
{
    setCurrentIndex(modelIndex.row());
    hidePopup();
}

void ComboBoxBase::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete)
        event->ignore();
    else
        QComboBox::keyPressEvent(event);
}

bool ComboBoxBase::focusNextPrevChild(bool)
{
    return false;
}

void ComboBoxBase::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    painter.setPen(palette().color(QPalette::Text));
    QStyleOptionComboBox option;
    initStyleOption(&option);
    if (popupFrame && popupFrame->isVisible()) {
        option.state |= QStyle::State_On;
        if (hasFocus())
            option.state |= QStyle::State_KeyboardFocusChange;
    }
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

} // namespace Ondrel
