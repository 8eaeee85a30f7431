// Whatever is done in the editor can be undone, and done again, to the last byte of the project.

#include "document.h"
#include "editorfixture.h"
#include "randomedits.h"
#include "scene.h"
#include "sceneview.h"

#include <QCoreApplication>
#include <QFile>

using namespace Host;

namespace
{

class UndoProperty : public Editor
{
protected:
    // The project with the same node in view and the same part of the canvas, which are no edits.
    QByteArray saved(const QString& name)
    {
        window.scene().show(id("photo"), PreviewNode::EmblemPrimary);
        window.sceneView().setPlace({0.5, QPointF(100, 50)});
        play("save " + path(name));
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
};

} // namespace

TEST_F(UndoProperty, AnyEditsAreUndoneAndRedoneToTheLastByte)
{
    constexpr int kSteps = 80;
    window.document().undoStack().clear();
    const QByteArray first = saved("first.ondrel");
    int strokes = 0;
    for (const unsigned int seed : {1u, 2u, 3u, 5u, 8u, 13u}) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        RandomEdits edits(window, script, seed, "photo");
        QUndoStack& stack = window.document().undoStack();
        edits.step(kSteps);
        EXPECT_EQ(edits.problems(), QStringList());
        EXPECT_GT(stack.count(), kSteps / 4);
        strokes += edits.strokes();
        while (stack.canRedo())
            stack.redo();
        const NodeId renamed = graph().nodes.begin()->first; // the picture has the first id, whatever its name is now
        window.document().renameNode(renamed, "photo");
        const QByteArray last = saved("last.ondrel");
        EXPECT_TRUE(last != first);
        while (stack.canUndo())
            stack.undo();
        EXPECT_TRUE(saved("undone.ondrel") == first) << qPrintable(edits.log().join(' '));
        while (stack.canRedo())
            stack.redo();
        EXPECT_TRUE(saved("redone.ondrel") == last) << qPrintable(edits.log().join(' '));
        while (stack.canUndo())
            stack.undo();
        stack.clear();
    }
    EXPECT_GT(strokes, 0);
}

// What is on the canvas is what the document says, after edits and their undoing.
TEST_F(UndoProperty, CanvasFollowsTheDocument)
{
    RandomEdits edits(window, script, 21, "photo");
    for (int i = 0; i < 150; ++i) {
        const QString what = edits.step();
        ASSERT_EQ(window.scene().nodeItems().size(), graph().nodes.size()) << qPrintable(edits.log().join(' '));
        QCoreApplication::processEvents(); // variable nodes settle their inputs
        for (const auto& [node, item] : window.scene().nodeItems()) {
            const NodeRecord& record = *graph().node(node);
            ASSERT_EQ(item->scenePos(), record.position) << qPrintable(what);
        }
        for (const Connection& connection : graph().connections) {
            const Anchor* const from = window.scene().anchor(connection.from, connection.output, true);
            const Anchor* const to = window.scene().anchor(connection.to, connection.input, false);
            ASSERT_TRUE(from && to) << qPrintable(edits.log().join(' '));
            ASSERT_TRUE(from->connected() && to->connected()) << qPrintable(edits.log().join(' '));
        }
    }
}
