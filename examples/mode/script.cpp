#include "script.h"

#include "canvasview.h"
#include "cropmode.h"
#include "window.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMouseEvent>
#include <QPixmap>
#include <QWheelEvent>

#include <optional>

namespace
{

std::optional<std::vector<int>> numbers(const QStringList& words, int first, int count)
{
    if (words.size() != first + count)
        return std::nullopt;
    std::vector<int> result;
    for (int i = first; i < words.size(); ++i) {
        bool ok = false;
        result.push_back(words[i].toInt(&ok));
        if (!ok)
            return std::nullopt;
    }
    return result;
}

std::optional<Handle> handleByName(const QString& name)
{
    for (int i = 0; i <= int(Handle::Inside); ++i) {
        if (handleName(Handle(i)) == name)
            return Handle(i);
    }
    return std::nullopt;
}

} // namespace

Script::Script(Window& window, const QDir& folder)
    : m_window(window)
    , m_folder(folder)
{
}

bool Script::fail(const QString& reason)
{
    m_error = reason;
    return false;
}

bool Script::run(const QString& text)
{
    int number = 0;
    for (const QString& line : text.split('\n')) {
        ++number;
        const QString command = line.simplified();
        if (command.isEmpty() || command.startsWith('#'))
            continue;
        if (!runLine(command.split(' ')))
            return fail(QString("line %1, \"%2\": %3").arg(QString::number(number), command, m_error));
        QApplication::processEvents();
    }
    return true;
}

bool Script::runLine(const QStringList& words)
{
    const QString command = words[0], rest = words.mid(1).join(' ');
    const QPoint middle = m_window.view().viewport()->rect().center();
    if (command == "drag")
        return drag(words);
    if (command == "expect")
        return expect(words);
    if (command == "aspect")
        return chooseAspect(rest);
    if (command == "key")
        return pressKey(rest);
    if (command == "grab")
        return grab(rest);
    if (command == "tool")
        m_window.chooseTool(rest);
    else if (command == "edit" && (rest == "on" || rest == "off"))
        m_window.setEditing(rest == "on");
    else if (command == "fit")
        m_window.fitPicture();
    else if (const auto sweep = numbers(words, 1, 4); command == "sweep" && sweep)
        moveMouse(QPoint((*sweep)[0], (*sweep)[1]), QPoint((*sweep)[2], (*sweep)[3]), Qt::LeftButton);
    else if (const auto by = numbers(words, 1, 2); command == "scroll" && by)
        moveMouse(middle, middle + QPoint((*by)[0], (*by)[1]), Qt::MiddleButton);
    else if (const auto turn = numbers(words, 1, 1); command == "wheel" && turn) {
        QWheelEvent event(middle, m_window.view().viewport()->mapToGlobal(middle), QPoint(), QPoint(0, (*turn)[0]),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_window.view().viewport(), &event);
    } else
        return fail("not understood");
    return true;
}

// In five steps, as a hand would.
void Script::moveMouse(const QPoint& from, const QPoint& to, Qt::MouseButton button)
{
    QWidget* target = m_window.view().viewport();
    const auto send = [target, button](QEvent::Type type, const QPoint& position, Qt::MouseButtons held) {
        QMouseEvent event(type, position, target->mapToGlobal(position),
                          type == QEvent::MouseMove ? Qt::NoButton : button, held, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    };
    send(QEvent::MouseMove, from, Qt::NoButton);
    send(QEvent::MouseButtonPress, from, button);
    for (int step = 1; step <= 5; ++step)
        send(QEvent::MouseMove, from + (to - from) * step / 5, button);
    send(QEvent::MouseButtonRelease, to, Qt::NoButton);
}

bool Script::drag(const QStringList& words)
{
    const auto by = numbers(words, 2, 2);
    if (!by)
        return fail("a handle and two numbers are wanted");
    const std::optional<Handle> handle = handleByName(words[1]);
    const std::optional<QPointF> place = handle ? m_window.mode().handleInView(*handle) : std::nullopt;
    if (!place)
        return fail("there is no such handle");
    moveMouse(place->toPoint(), place->toPoint() + QPoint((*by)[0], (*by)[1]), Qt::LeftButton);
    return true;
}

bool Script::expect(const QStringList& words)
{
    const auto wanted = numbers(words, 1, 4);
    if (!wanted)
        return fail("four numbers are wanted");
    const Ondrel::RectT<int>& frame = m_window.frame();
    if (frame == Ondrel::RectT<int>((*wanted)[0], (*wanted)[1], (*wanted)[2], (*wanted)[3]))
        return true;
    return fail(
        QString("the frame is %1 %2 %3 %4").arg(frame.left()).arg(frame.top()).arg(frame.width()).arg(frame.height()));
}

bool Script::chooseAspect(const QString& text)
{
    auto* box = m_window.findChild<QComboBox*>("aspect");
    const int index = box ? box->findText(text) : -1;
    if (index < 0)
        return fail("there is no such ratio");
    box->setCurrentIndex(index);
    return true;
}

// A key that is a shortcut of the window triggers its action; without a window manager no window is active, so Qt would
// not find it. Others go to the view.
bool Script::pressKey(const QString& text)
{
    const QKeySequence sequence(text);
    if (sequence.count() != 1)
        return fail("that is no key");
    for (QAction* action : m_window.findChildren<QAction*>()) {
        if (action->shortcuts().contains(sequence)) {
            action->trigger();
            return true;
        }
    }
    const int code = sequence[0];
    QKeyEvent event(QEvent::KeyPress, code & ~int(Qt::KeyboardModifierMask),
                    Qt::KeyboardModifiers(code & int(Qt::KeyboardModifierMask)));
    QApplication::sendEvent(&m_window.view(), &event);
    return true;
}

bool Script::grab(const QString& name)
{
    QApplication::processEvents();
    return m_window.grab().save(m_folder.filePath(name + ".png"), "PNG") || fail("the picture could not be written");
}
