// The base of undo steps: it counts, and the derived step does.

#include <ondrel/work/memoryawareundocommand.h>

#include <gtest/gtest.h>

#include <QMetaProperty>
#include <QPointer>
#include <QStringList>
#include <QVariant>

#include <type_traits>

namespace
{

using Ondrel::MemoryAwareUndoCommand;

// Notes its calls, and whether the command was undone at that moment.
class Step : public MemoryAwareUndoCommand
{
public:
    explicit Step(const QString& text = QString())
        : MemoryAwareUndoCommand(text)
    {
    }

    std::size_t memoryUsage() const override { return 4096; }
    void performUndo() override { note("undo"); }
    void performRedo() override { note("redo"); }

    QStringList calls;

private:
    void note(const QString& name) { calls << (isUndone() ? name + " while undone" : name); }
};

// Absorbs the steps of its own kind.
class Merging : public Step
{
public:
    bool mergeWith(const MemoryAwareUndoCommand* other) override
    {
        setText(text() + other->text());
        return true;
    }
    int id() const override { return 7; }
};

TEST(MemoryAwareUndoCommand, ANewCommandIsNotUndoneAndNeverMerges)
{
    Step command("Crop");
    const Step same("Crop");
    EXPECT_FALSE(command.isUndone());
    EXPECT_EQ(command.id(), -1);
    EXPECT_FALSE(command.mergeWith(&same));
    EXPECT_FALSE(command.mergeWith(&command));
    EXPECT_FALSE(command.mergeWith(nullptr));
    EXPECT_EQ(command.parent(), nullptr);
    EXPECT_TRUE(command.calls.isEmpty());
}

TEST(MemoryAwareUndoCommand, ANewCommandIsUndoneAndRedone)
{
    Step command;
    command.undo();
    EXPECT_TRUE(command.isUndone());
    command.redo();
    EXPECT_FALSE(command.isUndone());
    EXPECT_EQ(command.calls, QStringList({"undo", "redo while undone"}));
}

TEST(MemoryAwareUndoCommand, ACommandThatWasRedoneFirstNeedsTwoUndos)
{
    Step command;
    command.redo();
    EXPECT_FALSE(command.isUndone());
    command.undo();
    EXPECT_FALSE(command.isUndone());
    command.undo();
    EXPECT_TRUE(command.isUndone());
}

TEST(MemoryAwareUndoCommand, TheCountIsNoFlag)
{
    Step command;
    int count = 0;
    for (const bool undo : {true, true, true, false, false, false, false, false, true, true, true, false}) {
        if (undo) {
            command.undo();
            ++count;
        } else {
            command.redo();
            --count;
        }
        EXPECT_EQ(command.isUndone(), count > 0) << count;
    }
}

TEST(MemoryAwareUndoCommand, TheStepIsTakenBeforeItIsCounted)
{
    Step command;
    command.undo(); // not undone yet
    command.undo(); // undone once
    command.redo(); // undone twice
    command.redo(); // undone once
    command.redo(); // no longer undone
    EXPECT_EQ(command.calls,
              QStringList({"undo", "undo while undone", "redo while undone", "redo while undone", "redo"}));
}

TEST(MemoryAwareUndoCommand, TheTextIsAProperty)
{
    Step command("Crop");
    EXPECT_EQ(command.text(), "Crop");
    EXPECT_EQ(command.property("text"), QVariant(QString("Crop")));
    command.setText("Rotate");
    EXPECT_EQ(command.property("text"), QVariant(QString("Rotate")));
    EXPECT_TRUE(command.setProperty("text", "Scale"));
    EXPECT_EQ(command.text(), "Scale");

    const QMetaObject& meta = MemoryAwareUndoCommand::staticMetaObject;
    const int index = meta.indexOfProperty("text");
    ASSERT_GE(index, meta.propertyOffset());
    EXPECT_EQ(meta.property(index).userType(), int(QMetaType::QString));
    EXPECT_TRUE(meta.property(index).isWritable());
    EXPECT_STREQ(meta.className(), "Ondrel::MemoryAwareUndoCommand");
}

TEST(MemoryAwareUndoCommand, ADerivedStepMergesAndTellsItsMemory)
{
    Merging command;
    command.setText("a");
    const Step other("b");
    MemoryAwareUndoCommand& base = command;
    EXPECT_EQ(base.id(), 7);
    EXPECT_TRUE(base.mergeWith(&other));
    EXPECT_EQ(base.text(), "ab");
    EXPECT_EQ(base.memoryUsage(), 4096U);
}

TEST(MemoryAwareUndoCommand, IsDeletedThroughItsBase)
{
    QPointer<MemoryAwareUndoCommand> command(new Step);
    delete command.data();
    EXPECT_TRUE(command.isNull());
}

// The members that derived classes of hosts and plug-ins are compiled against.
static_assert(std::is_base_of_v<QObject, MemoryAwareUndoCommand>);
static_assert(std::is_abstract_v<MemoryAwareUndoCommand>);
static_assert(std::is_constructible_v<Step, const QString&>);
static_assert(!std::is_convertible_v<QString, Step>);
static_assert(std::is_same_v<decltype(&MemoryAwareUndoCommand::mergeWith),
                             bool (MemoryAwareUndoCommand::*)(const MemoryAwareUndoCommand*)>);
static_assert(std::is_same_v<decltype(&MemoryAwareUndoCommand::id), int (MemoryAwareUndoCommand::*)() const>);

} // namespace
