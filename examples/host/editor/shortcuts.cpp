#include "shortcuts.h"

#include "shortcutsdialog.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>

#include <algorithm>

namespace Host
{
namespace
{

QString settingFor(const QAction& action)
{
    return "editor/shortcuts/" + action.objectName();
}

QString withoutMarks(QString text)
{
    text.remove('&');
    return text.endsWith("...") ? text.chopped(3) : text;
}

bool disturbs(const QKeySequence& one, const QKeySequence& other)
{
    return !one.isEmpty() && !other.isEmpty() &&
           (one.matches(other) != QKeySequence::NoMatch || other.matches(one) != QKeySequence::NoMatch);
}

// Titles are in some language or other; the keys that the program begins with, and the place, are not.
void nameByPlace(QObject& object, const QString& parent, int index, const QKeySequence& keys = QKeySequence())
{
    if (!object.objectName().isEmpty())
        return;
    QString part = keys.toString(QKeySequence::PortableText);
    part.replace('/', "slash").replace('\\', "backslash"); // which part groups of settings
    object.setObjectName(QString("%1.%2").arg(parent, part.isEmpty() ? QString::number(index) : part));
}

} // namespace

Shortcuts::Shortcuts(QWidget& window)
    : QObject(&window)
    , m_window(window)
{
}

void Shortcuts::takeMenus(const QMenuBar& bar)
{
    int index = 0;
    for (const QAction* const title : bar.actions()) {
        if (QMenu* const menu = title->menu()) {
            nameByPlace(*menu, "menu", index);
            takeMenu(*menu, withoutMarks(menu->title()));
        }
        ++index;
    }
}

void Shortcuts::takeMenu(QMenu& menu, const QString& place)
{
    if (menu.property("changing").toBool())
        return;
    int index = 0;
    for (QAction* const action : menu.actions()) {
        if (QMenu* const inner = action->menu()) {
            nameByPlace(*inner, menu.objectName(), index);
            takeMenu(*inner, place + " > " + withoutMarks(inner->title()));
        } else if (!action->isSeparator()) {
            nameByPlace(*action, menu.objectName(), index, action->shortcut());
            take(*action, place);
        }
        ++index;
    }
}

void Shortcuts::take(QAction& action, const QString& place)
{
    m_entries.push_back({&action, place, withoutMarks(action.text()), action.shortcuts()});
    const QVariant kept = QSettings().value(settingFor(action));
    if (kept.isValid())
        action.setShortcuts(QKeySequence::listFromString(kept.toString(), QKeySequence::PortableText));
}

const Shortcuts::Entry* Shortcuts::holder(const QKeySequence& keys, const QAction* except) const
{
    for (const Entry& entry : m_entries) {
        const QList<QKeySequence> all = entry.action->shortcuts();
        const auto in = [&keys](const QKeySequence& own) { return disturbs(own, keys); };
        if (entry.action != except && std::any_of(all.begin(), all.end(), in))
            return &entry;
    }
    return nullptr;
}

void Shortcuts::set(const Entry& entry, const QList<QKeySequence>& keys)
{
    entry.action->setShortcuts(keys);
    QSettings settings;
    if (keys == entry.initial)
        settings.remove(settingFor(*entry.action));
    else // an empty text is none at all
        settings.setValue(settingFor(*entry.action), QKeySequence::listToString(keys, QKeySequence::PortableText));
}

void Shortcuts::assign(const QAction* action, const QList<QKeySequence>& keys)
{
    for (const QKeySequence& each : keys) {
        while (const Entry* const other = holder(each, action)) {
            QList<QKeySequence> rest = other->action->shortcuts();
            rest.erase(std::remove_if(rest.begin(), rest.end(),
                                      [&each](const QKeySequence& own) { return disturbs(own, each); }),
                       rest.end());
            set(*other, rest);
        }
    }
    for (const Entry& entry : m_entries) {
        if (entry.action == action)
            set(entry, keys);
    }
    Q_EMIT changed();
}

void Shortcuts::reset(const QAction* action)
{
    for (const Entry& entry : m_entries) {
        if (entry.action == action)
            return assign(action, entry.initial);
    }
}

void Shortcuts::resetAll()
{
    for (const Entry& entry : m_entries)
        set(entry, entry.initial);
    Q_EMIT changed();
}

void Shortcuts::openDialog()
{
    auto* const dialog = new ShortcutsDialog(*this, &m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

} // namespace Host
