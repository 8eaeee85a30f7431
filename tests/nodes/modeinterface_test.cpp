#include "modesupport.h"

#include <ondrel/core/image.h>
#include <ondrel/core/platform.h>
#include <ondrel/core/rect.h>
#include <ondrel/work/memoryawareundocommand.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QImage>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using namespace OndrelTest;
using Ondrel::ModeInterface;
using Ondrel::TransformSeries;
using Rect = Ondrel::RectT<int>;

class Command : public Ondrel::MemoryAwareUndoCommand
{
public:
    Command()
        : MemoryAwareUndoCommand("test")
    {
    }
    std::size_t memoryUsage() const override { return 0; }
    void performUndo() override {}
    void performRedo() override {}
};

// Keeps what the signals that have values of any type delivered.
class Listener : public QObject
{
    Q_OBJECT
public:
    typedef Ondrel::RectT<int> Rect;

    std::vector<Ondrel::MemoryAwareUndoCommand*> commands;
    std::vector<Rect> rects;
    std::vector<QVariant> values;
    std::vector<std::uint64_t> nodes, fields;

public Q_SLOTS:
    void takeCommand(Ondrel::MemoryAwareUndoCommand* command) { commands.push_back(command); }
    void takeInput(size_t fieldIndex, QVariant value, Rect updatedRect)
    {
        fields.push_back(fieldIndex);
        values.push_back(value);
        rects.push_back(updatedRect);
    }
    void takeValue(size_t fieldIndex, QVariant value)
    {
        fields.push_back(fieldIndex);
        values.push_back(value);
    }
    void takeNodeInput(std::uint64_t nodeId, size_t fieldIndex, Rect updatedRect)
    {
        nodes.push_back(nodeId);
        fields.push_back(fieldIndex);
        rects.push_back(updatedRect);
    }
};

class Source : public QObject
{
    Q_OBJECT
Q_SIGNALS:
    void changed(size_t index, QVariant newValue);
};

const std::vector<const char*>& allSignals()
{
    static const std::vector<const char*> list = {
        SIGNAL(newUndoCommand(Ondrel::MemoryAwareUndoCommand*)),
        SIGNAL(inputValueChanged(size_t, QVariant, Rect)),
        SIGNAL(inputValueChangedNoUpdate(size_t, QVariant)),
        SIGNAL(inputValueChangedNoValue(size_t, Rect)),
        SIGNAL(inputValueChanged(std::uint64_t, size_t, Rect)),
        SIGNAL(requestCanvasUpdate()),
        SIGNAL(requestCanvasTranslate(QPoint)),
        SIGNAL(requestCanvasZoomStep(int)),
        SIGNAL(requestCanvasZoomRect(QPoint, QPoint, int)),
    };
    return list;
}

// Listens to all signals of a mode.
class AllSignals
{
public:
    explicit AllSignals(const ModeInterface& mode)
    {
        // QSignalSpy keeps values of types that it knows by the name that stands in the signature.
        qRegisterMetaType<size_t>("size_t");
        qRegisterMetaType<std::uint64_t>("std::uint64_t");
        qRegisterMetaType<Ondrel::MemoryAwareUndoCommand*>("Ondrel::MemoryAwareUndoCommand*");
        for (const char* signal : allSignals()) {
            m_spies.push_back(std::make_unique<QSignalSpy>(&mode, signal));
            EXPECT_TRUE(m_spies.back()->isValid()) << signal;
        }
    }

    int count() const
    {
        int sum = 0;
        for (const auto& spy : m_spies)
            sum += spy->count();
        return sum;
    }

    // The arguments of the one signal that was sent since the last call. A failure, and nothing, if there was another.
    QList<QVariant> takeOnly(const char* signal)
    {
        QList<QVariant> result;
        bool found = false;
        for (std::size_t i = 0; i < m_spies.size(); ++i) {
            const bool wanted = qstrcmp(allSignals()[i], signal) == 0;
            EXPECT_EQ(m_spies[i]->count(), wanted ? 1 : 0) << allSignals()[i];
            if (wanted)
                result = m_spies[i]->value(0);
            found = found || wanted;
            m_spies[i]->clear();
        }
        EXPECT_TRUE(found) << signal;
        return result;
    }

private:
    std::vector<std::unique_ptr<QSignalSpy>> m_spies;
};

TransformSeries seriesOfWidth(int width)
{
    TransformSeries::Node node;
    node.rect = Rect(0, 0, width, 10);
    TransformSeries series;
    series.setPaths({{node}});
    return series;
}

// The place of a virtual function in the table, as the Itanium C++ ABI writes it into a pointer to a member.
template <typename Function>
std::ptrdiff_t slotOf(Function function)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof function == sizeof words, "a pointer to a member function");
    std::memcpy(words, &function, sizeof words);
    return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

static_assert(std::is_abstract<ModeInterface>::value, "");
static_assert(std::is_base_of<QObject, ModeInterface>::value, "");
static_assert(std::has_virtual_destructor<ModeInterface>::value, "");
static_assert(std::is_same<decltype(&ModeInterface::previewMode), bool (ModeInterface::*)() const>::value, "");
static_assert(std::is_same<decltype(&ModeInterface::isPaintingMode), bool (ModeInterface::*)() const>::value, "");

TEST(ModeInterface, HasItsHooksInTheTableInTheOrderOfTheirDeclaration)
{
    const std::vector<std::ptrdiff_t> slots = {
        slotOf(&ModeInterface::initialize),
        slotOf(&ModeInterface::createDockWidgets),
        slotOf(&ModeInterface::createToolButtons),
        slotOf(&ModeInterface::createStatusBarWidget),
        slotOf(&ModeInterface::show),
        slotOf(&ModeInterface::hide),
        slotOf(&ModeInterface::canvasGeometryChanged),
        slotOf(&ModeInterface::canvasChanged),
        slotOf(&ModeInterface::currentToolAboutToChange),
        slotOf(&ModeInterface::currentToolChanged),
        slotOf(&ModeInterface::nodeInputChanged),
        slotOf(&ModeInterface::viewMousePressEvent),
        slotOf(&ModeInterface::viewMouseMoveEvent),
        slotOf(&ModeInterface::viewMouseReleaseEvent),
        slotOf(&ModeInterface::viewMouseLeaveEvent),
        slotOf(&ModeInterface::viewKeyPressEvent),
        slotOf(&ModeInterface::viewDrawOverCanvas),
        slotOf(&ModeInterface::previewMode),
        slotOf(&ModeInterface::isPaintingMode),
        slotOf(&ModeInterface::modeName),
    };
    // QObject of Qt 5 has twelve.
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], static_cast<std::ptrdiff_t>(12 + i)) << i;
}

TEST(ModeInterface, HasItsMembersInTheOrderOfTheirDeclaration)
{
    EXPECT_TRUE(Mode().membersStandInOrder());
}

TEST(ModeInterface, BelongsToItsParent)
{
    EXPECT_EQ(Mode().parent(), nullptr);
    QPointer<Mode> mode;
    {
        QObject parent;
        mode = new Mode(&parent);
        EXPECT_EQ(mode->parent(), &parent);
    }
    EXPECT_TRUE(mode.isNull());
}

TEST(ModeInterface, StoresWhatTheHostTellsIt)
{
    QGraphicsScene scene;
    QGraphicsView view(&scene);
    QGraphicsRectItem item;
    Mode mode;
    const AllSignals sent(mode);
    mode.initialize(&view, &scene, &item);
    EXPECT_EQ(mode.view, &view);
    EXPECT_EQ(mode.scene, &scene);
    EXPECT_EQ(mode.canvasItem, &item);
    EXPECT_TRUE(scene.items().empty());

    constexpr unsigned long kId = std::numeric_limits<unsigned long>::max();
    mode.show(kId);
    EXPECT_EQ(mode.nodeId, kId);
    mode.hide(true);
    mode.hide(false);
    EXPECT_EQ(mode.nodeId, kId);
    mode.show(7);
    EXPECT_EQ(mode.nodeId, 7UL);

    const auto image = Ondrel::Image(3, 2).toPtr();
    const long users = image.use_count();
    mode.canvasChanged(image);
    EXPECT_EQ(mode.canvas, image);
    EXPECT_EQ(image.use_count(), users + 1);
    mode.canvasChanged(nullptr);
    EXPECT_EQ(mode.canvas, nullptr);
    EXPECT_EQ(image.use_count(), users);
    EXPECT_EQ(sent.count(), 0);
}

TEST(ModeInterface, KeepsACopyOfTheSeries)
{
    Mode mode;
    const AllSignals sent(mode);
    TransformSeries series = seriesOfWidth(40);
    const QSize base = series.baseSize();
    mode.canvasGeometryChanged(QSize(100, 50), QSize(400, 300), series);
    EXPECT_EQ(mode.displaySize, QSize(100, 50));
    EXPECT_EQ(mode.realSize, QSize(400, 300));
    EXPECT_EQ(mode.transformSeries.pathCount(), 1U);
    EXPECT_EQ(mode.transformSeries.baseSize(), base);
    series = TransformSeries();
    EXPECT_EQ(mode.transformSeries.pathCount(), 1U);
    EXPECT_EQ(mode.transformSeries.baseSize(), base);

    mode.canvasGeometryChanged(QSize(), QSize(1, 2), series);
    EXPECT_EQ(mode.displaySize, QSize());
    EXPECT_EQ(mode.realSize, QSize(1, 2));
    EXPECT_TRUE(mode.transformSeries.empty());
    EXPECT_EQ(sent.count(), 0);
}

TEST(ModeInterface, OffersNoControls)
{
    Mode mode;
    QDockWidget dock;
    QToolButton button;
    std::vector<QDockWidget*> docks = {&dock};
    std::vector<QToolButton*> buttons = {&button};
    mode.createDockWidgets(docks);
    mode.createToolButtons(buttons);
    EXPECT_EQ(docks, std::vector<QDockWidget*>{&dock});
    EXPECT_EQ(buttons, std::vector<QToolButton*>{&button});
    EXPECT_EQ(mode.createStatusBarWidget(), nullptr);
    EXPECT_FALSE(mode.previewMode());
    EXPECT_FALSE(mode.isPaintingMode());
}

TEST(ModeInterface, LetsEventsPass)
{
    Mode mode;
    const AllSignals sent(mode);
    QMouseEvent mouse(QEvent::MouseButtonPress, QPointF(1, 2), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QEvent leave(QEvent::Leave);
    for (const bool accepted : {false, true}) {
        for (QEvent* event : {static_cast<QEvent*>(&mouse), static_cast<QEvent*>(&key), &leave})
            event->setAccepted(accepted);
        mode.viewMousePressEvent(&mouse);
        mode.viewMouseMoveEvent(&mouse);
        mode.viewMouseReleaseEvent(&mouse);
        mode.viewMouseLeaveEvent(&leave);
        mode.viewKeyPressEvent(&key);
        EXPECT_EQ(mouse.isAccepted(), accepted);
        EXPECT_EQ(leave.isAccepted(), accepted);
        EXPECT_EQ(key.isAccepted(), accepted);
    }
    mode.viewMousePressEvent(nullptr);
    mode.viewMouseMoveEvent(nullptr);
    mode.viewMouseReleaseEvent(nullptr);
    mode.viewMouseLeaveEvent(nullptr);
    mode.viewKeyPressEvent(nullptr);
    mode.currentToolAboutToChange();
    mode.currentToolChanged("crop");
    mode.nodeInputChanged(2, QVariant(5));
    EXPECT_EQ(sent.count(), 0);
}

TEST(ModeInterface, DrawsNothing)
{
    Mode mode;
    QImage image(8, 8, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::darkGreen);
    const QImage before = image.copy();
    QPainter painter(&image);
    painter.setBrush(Qt::red);
    mode.viewDrawOverCanvas(&painter, QRectF(0, 0, 8, 8));
    mode.viewDrawOverCanvas(nullptr, QRectF());
    EXPECT_EQ(painter.brush(), QBrush(Qt::red));
    EXPECT_TRUE(painter.transform().isIdentity());
    painter.end();
    EXPECT_EQ(image, before);
}

TEST(ModeSignals, HaveTheirSignaturesAndParameterNames)
{
    QStringList found;
    const QMetaObject& meta = ModeInterface::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() == QMetaMethod::Signal)
            found.append(method.methodSignature() + ' ' + method.parameterNames().join(','));
    }
    QStringList expected = {
        "newUndoCommand(Ondrel::MemoryAwareUndoCommand*) undoCommand",
        "inputValueChanged(size_t,QVariant,Rect) fieldIndex,value,updatedRect",
        "inputValueChanged(size_t,QVariant) fieldIndex,value",
        "inputValueChangedNoUpdate(size_t,QVariant) fieldIndex,value",
        "inputValueChangedNoValue(size_t,Rect) fieldIndex,updatedRect",
        "inputValueChanged(std::uint64_t,size_t,Rect) nodeId,fieldIndex,updatedRect",
        "requestCanvasUpdate() ",
        "requestCanvasTranslate(QPoint) offset",
        "requestCanvasZoomStep(int) direction",
        "requestCanvasZoomRect(QPoint,QPoint,int) viewTopLeft,viewBottomRight,direction",
    };
    found.sort();
    expected.sort();
    EXPECT_EQ(found.join('\n').toStdString(), expected.join('\n').toStdString());
}

TEST(ModeSignals, CarryInputs)
{
    Mode mode;
    AllSignals sent(mode);
    const Rect rect(3, 4, 50, 60);
    constexpr size_t kField = std::numeric_limits<size_t>::max();

    Q_EMIT mode.inputValueChanged(kField, QVariant(5), rect);
    QList<QVariant> arguments = sent.takeOnly(SIGNAL(inputValueChanged(size_t, QVariant, Rect)));
    ASSERT_EQ(arguments.size(), 3);
    EXPECT_EQ(arguments[0].value<size_t>(), kField);
    EXPECT_EQ(arguments[1], QVariant(5));
    ASSERT_TRUE(arguments[2].canConvert<Rect>());
    EXPECT_EQ(arguments[2].value<Rect>(), rect);

    Q_EMIT mode.inputValueChangedNoUpdate(2, QVariant("text"));
    arguments = sent.takeOnly(SIGNAL(inputValueChangedNoUpdate(size_t, QVariant)));
    ASSERT_EQ(arguments.size(), 2);
    EXPECT_EQ(arguments[0].value<size_t>(), 2U);
    EXPECT_EQ(arguments[1], QVariant("text"));

    Q_EMIT mode.inputValueChangedNoValue(9, rect);
    arguments = sent.takeOnly(SIGNAL(inputValueChangedNoValue(size_t, Rect)));
    ASSERT_EQ(arguments.size(), 2);
    EXPECT_EQ(arguments[0].value<size_t>(), 9U);
    ASSERT_TRUE(arguments[1].canConvert<Rect>());
    EXPECT_EQ(arguments[1].value<Rect>(), rect);
}

TEST(ModeSignals, CarryRequestsToTheCanvas)
{
    Mode mode;
    AllSignals sent(mode);
    Q_EMIT mode.requestCanvasUpdate();
    EXPECT_EQ(sent.takeOnly(SIGNAL(requestCanvasUpdate())), QList<QVariant>());
    Q_EMIT mode.requestCanvasTranslate(QPoint(-3, 8));
    EXPECT_EQ(sent.takeOnly(SIGNAL(requestCanvasTranslate(QPoint))), QList<QVariant>{QPoint(-3, 8)});
    Q_EMIT mode.requestCanvasZoomStep(-1);
    EXPECT_EQ(sent.takeOnly(SIGNAL(requestCanvasZoomStep(int))), QList<QVariant>{-1});
    Q_EMIT mode.requestCanvasZoomRect(QPoint(1, 2), QPoint(30, 40), 1);
    EXPECT_EQ(sent.takeOnly(SIGNAL(requestCanvasZoomRect(QPoint, QPoint, int))),
              (QList<QVariant>{QPoint(1, 2), QPoint(30, 40), 1}));
}

TEST(ModeSignals, HandOverUndoCommands)
{
    Mode mode;
    Listener listener;
    QObject::connect(&mode, SIGNAL(newUndoCommand(Ondrel::MemoryAwareUndoCommand*)), &listener,
                     SLOT(takeCommand(Ondrel::MemoryAwareUndoCommand*)));
    Command command;
    Q_EMIT mode.newUndoCommand(&command);
    EXPECT_EQ(listener.commands, std::vector<Ondrel::MemoryAwareUndoCommand*>{&command});
    EXPECT_EQ(command.parent(), nullptr);
    AllSignals sent(mode);
    Q_EMIT mode.newUndoCommand(nullptr);
    EXPECT_EQ(sent.takeOnly(SIGNAL(newUndoCommand(Ondrel::MemoryAwareUndoCommand*))).size(), 1);
}

void expectInvalid(const Rect& rect)
{
    EXPECT_EQ(rect, Rect::invalid());
    EXPECT_EQ(rect.left(), -1);
    EXPECT_EQ(rect.top(), -1);
    EXPECT_EQ(rect.right(), -2);
    EXPECT_EQ(rect.bottom(), -2);
}

TEST(ModeSignals, DeliverAnInvalidRectangleWhereNoneIsGiven)
{
    Mode mode;
    AllSignals sent(mode);
    Listener listener;
    QObject::connect(&mode, SIGNAL(inputValueChanged(size_t, QVariant, Rect)), &listener,
                     SLOT(takeInput(size_t, QVariant, Rect)));
    Q_EMIT mode.inputValueChanged(1, QVariant(10));

    Source source;
    QObject::connect(&source, SIGNAL(changed(size_t, QVariant)), &mode, SIGNAL(inputValueChanged(size_t, QVariant)));
    Q_EMIT source.changed(2, QVariant(20));

    EXPECT_TRUE(QMetaObject::invokeMethod(&mode, "inputValueChanged", Qt::DirectConnection, Q_ARG(size_t, 3),
                                          Q_ARG(QVariant, QVariant(30))));

    EXPECT_EQ(listener.fields, (std::vector<std::uint64_t>{1, 2, 3}));
    EXPECT_EQ(listener.values, (std::vector<QVariant>{10, 20, 30}));
    ASSERT_EQ(listener.rects.size(), 3U);
    for (const Rect& rect : listener.rects)
        expectInvalid(rect);
    EXPECT_EQ(sent.count(), 3);
}

TEST(ModeSignals, ReachSlotsThatTakeNoRectangle)
{
    Mode mode;
    Listener listener;
    QObject::connect(&mode, SIGNAL(inputValueChanged(size_t, QVariant)), &listener, SLOT(takeValue(size_t, QVariant)));
    Q_EMIT mode.inputValueChanged(1, QVariant(10));
    Q_EMIT mode.inputValueChanged(2, QVariant(20), Rect(0, 0, 5, 5));
    EXPECT_EQ(listener.fields, (std::vector<std::uint64_t>{1, 2}));
    EXPECT_EQ(listener.values, (std::vector<QVariant>{10, 20}));
}

TEST(ModeSignals, NameAnotherNode)
{
    Mode mode;
    AllSignals sent(mode);
    Listener listener;
    QObject::connect(&mode, SIGNAL(inputValueChanged(std::uint64_t, size_t, Rect)), &listener,
                     SLOT(takeNodeInput(std::uint64_t, size_t, Rect)));
    constexpr unsigned long kMax = std::numeric_limits<unsigned long>::max();
    const Rect rect(-7, 8, 9, 10);
    mode.show(1);
    mode.emitInputValueChanged(kMax, 12, rect);
    const QList<QVariant> arguments = sent.takeOnly(SIGNAL(inputValueChanged(std::uint64_t, size_t, Rect)));
    ASSERT_EQ(arguments.size(), 3);
    EXPECT_EQ(arguments[0].value<std::uint64_t>(), kMax);
    EXPECT_EQ(arguments[1].value<size_t>(), 12U);
    EXPECT_EQ(arguments[2].value<Rect>(), rect);

    mode.emitInputValueChanged(4, kMax, Rect::invalid());
    EXPECT_EQ(listener.nodes, (std::vector<std::uint64_t>{kMax, 4}));
    EXPECT_EQ(listener.fields, (std::vector<std::uint64_t>{12, kMax}));
    EXPECT_EQ(listener.rects, (std::vector<Rect>{rect, Rect::invalid()}));
}

TEST(ModeSignals, TakeABareIntegerForTheFieldOfANamedNode)
{
    Mode mode;
    AllSignals sent(mode);
    const Rect rect(1, 2, 3, 4);
    Q_EMIT mode.inputValueChanged(3, 5, rect);
    const QList<QVariant> arguments = sent.takeOnly(SIGNAL(inputValueChanged(std::uint64_t, size_t, Rect)));
    ASSERT_EQ(arguments.size(), 3);
    EXPECT_EQ(arguments[0].value<std::uint64_t>(), 3U);
    EXPECT_EQ(arguments[1].value<size_t>(), 5U);
    EXPECT_EQ(arguments[2].value<Rect>(), rect);
}

TEST(ModeToolButton, IsMadeAsAsked)
{
    const std::unique_ptr<QToolButton> button(
        ModeInterface::createToolButton("Crop", "no such.png", QKeySequence("C")));
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->parent(), nullptr);
    EXPECT_TRUE(button->isCheckable());
    EXPECT_FALSE(button->isChecked());
    EXPECT_TRUE(button->autoRaise());
    EXPECT_EQ(button->toolTip(), "Crop");
    EXPECT_EQ(button->shortcut(), QKeySequence("C"));
    EXPECT_TRUE(button->icon().pixmap(16, 16).isNull());

    const std::unique_ptr<QToolButton> plain(ModeInterface::createToolButton("", "", QKeySequence()));
    EXPECT_NE(plain, button);
    EXPECT_TRUE(plain->isCheckable());
    EXPECT_TRUE(plain->toolTip().isEmpty());
    EXPECT_TRUE(plain->shortcut().isEmpty());
}

TEST(ModeToolButton, HasItsIconFromTheIconsDirectory)
{
    struct WorkingDirectory {
        ~WorkingDirectory() { QDir::setCurrent(before); }
        const QString before = QDir::currentPath();
    };
    const QTemporaryDir directory;
    const WorkingDirectory restore;
    ASSERT_TRUE(directory.isValid());
    ASSERT_TRUE(QDir::setCurrent(directory.path()));
    ASSERT_TRUE(QFile("ondrel_debug.txt").open(QIODevice::WriteOnly));
    const QString icons = Ondrel::Platform::IconsDirectory();
    ASSERT_TRUE(icons.startsWith(QDir::currentPath()));
    ASSERT_TRUE(QDir().mkpath(icons + "tools"));
    QImage picture(16, 16, QImage::Format_RGB32);
    for (const auto& [name, color] : {std::make_pair("a.png", Qt::red), std::make_pair("tools/b.png", Qt::blue)}) {
        picture.fill(color);
        ASSERT_TRUE(picture.save(icons + name));
        const std::unique_ptr<QToolButton> button(ModeInterface::createToolButton("tip", name, QKeySequence()));
        const QImage shown = button->icon().pixmap(16, 16).toImage();
        ASSERT_EQ(shown.size(), QSize(16, 16)) << name;
        EXPECT_EQ(shown.pixelColor(8, 8), QColor(color)) << name;
    }
}

} // namespace

#include "modeinterface_test.moc"
