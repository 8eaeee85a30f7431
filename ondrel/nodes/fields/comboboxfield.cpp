#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/nodes/fields/fieldproxy_p.h>
#include <ondrel/widgets/listcombobox.h>
#include <ondrel/widgets/stylesheet_p.h>
#include <ondrel/widgets/thumbnailcombobox.h>

#include <QGraphicsProxyWidget>
#include <QIcon>
#include <QSignalBlocker>

namespace Ondrel
{
namespace
{

ComboBoxBase* makeComboBox(ComboBoxInputField::DisplayStyle style)
{
    if (style == ComboBoxInputField::Thumbnails)
        return new ThumbnailComboBox(nullptr);
    return new ListComboBox(nullptr);
}

} // namespace

ComboBoxInputField::ComboBoxInputField(QString name, QGraphicsItem* parent, const QString& displayName,
                                       const QStringList& choices, int initial, DisplayStyle style)
    : InputField(name, parent, nullptr, displayName)
    , m_displayStyle(style == Thumbnails ? Thumbnails : List)
    , m_widget(makeComboBox(style))
{
    if (m_displayStyle == Thumbnails)
        connect(m_widget, SIGNAL(thumbnailsRequested()), this, SLOT(comboBoxThumbnailsRequested()));
    for (const QString& choice : choices)
        addChoice(choice);
    setCurrentIndex(initial);
    m_widget->setAccessibleName(displayName);
    applyStyleSheet(*m_widget, QStringLiteral("combobox.css"));
    m_widget->ensurePolished(); // so that the size hints are those of the sheet's font from now on
    connect(m_widget, SIGNAL(currentIndexChanged(int)), this, SLOT(notifyCurrentIndexChanged(int)));
}

ComboBoxInputField::~ComboBoxInputField()
{
    if (!m_proxy)
        delete m_widget;
}

void ComboBoxInputField::addChoice(const QString& choice)
{
    if (m_displayStyle == List && choice == QLatin1String("--"))
        static_cast<ListComboBox*>(m_widget)->addSeparator();
    else
        m_widget->insertItem(m_widget->count(), QIcon(), choice);
}

int ComboBoxInputField::indexOf(const QString& text) const
{
    return m_widget->findData(text, Qt::DisplayRole, Qt::MatchCaseSensitive);
}

void ComboBoxInputField::setChoices(const QStringList& choices)
{
    const QSignalBlocker blocker(m_widget);
    m_widget->clear();
    m_widget->insertItems(m_widget->count(), choices);
}

void ComboBoxInputField::setCurrentIndex(int index)
{
    if (index >= 0 && index < m_widget->count())
        m_widget->setCurrentIndex(index);
}

int ComboBoxInputField::currentIndex() const
{
    return m_widget->currentIndex();
}

void ComboBoxInputField::setCurrentText(QString text)
{
    const QSignalBlocker blocker(m_widget);
    setCurrentIndex(indexOf(text));
}

QString ComboBoxInputField::currentText() const
{
    return m_widget->currentText();
}

void ComboBoxInputField::setItemEnabled(const QString& text, bool enabled)
{
    if (m_displayStyle == List)
        static_cast<ListComboBox*>(m_widget)->setItemEnabled(indexOf(text), enabled);
}

void ComboBoxInputField::setRequestedThumbnail(unsigned int index, const std::shared_ptr<const Image>& image)
{
    if (m_displayStyle == Thumbnails)
        static_cast<ThumbnailComboBox*>(m_widget)->setRequestedThumbnail(index, image);
}

std::vector<QVariant> ComboBoxInputField::values() const
{
    std::vector<QVariant> texts;
    texts.reserve(std::size_t(m_widget->count()));
    for (int i = 0; i < m_widget->count(); ++i)
        texts.emplace_back(m_widget->itemText(i));
    return texts;
}

float ComboBoxInputField::minWidth() const
{
    return labelWidth() + float(m_widget->sizeHint().width());
}

float ComboBoxInputField::minHeight() const
{
    return float(m_widget->minimumSizeHint().height());
}

void ComboBoxInputField::addedToScene()
{
    embed(m_proxy, m_widget, *this, QPointF(double(FieldBase::minWidth()), 0.0));
}

void ComboBoxInputField::sizeChanged(float width, float, float labelWidth)
{
    fitBehindLabel(m_proxy, *m_widget, width, labelWidth);
}

// After a choice in the popup the keyboard comes back to the box.
void ComboBoxInputField::notifyCurrentIndexChanged(int index)
{
    Q_EMIT currentIndexChanged(index);
    if (!m_proxy)
        return;
    m_proxy->setFocus(Qt::OtherFocusReason);
    m_widget->setFocus(Qt::OtherFocusReason);
}

void ComboBoxInputField::comboBoxThumbnailsRequested()
{
    Q_EMIT thumbnailsRequested(this);
}

} // namespace Ondrel
