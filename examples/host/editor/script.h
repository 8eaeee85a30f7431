#pragma once

#include <QDir>
#include <QString>
#include <QStringList>

class QGraphicsView;

namespace Host
{

class EditorWindow;

// Plays a user's doings on a window, for tests and demonstrations. A line is one command; words with blanks stand in
// double quotes; empty lines and those that begin with "#" are skipped. Nodes are named by their headers.
//
//   open FILE | save FILE            and waits until it is done
//   export FILE                      what is shown; and waits
//   import FILE X Y                  at a point of the canvas
//   add TYPE X Y NAME                a node of that kind, as the search makes it
//   wire NODE OUTPUT NODE INPUT      drawn with the mouse from anchor to anchor
//   unwire NODE INPUT                drawn off with the mouse, and let go beside
//   replug NODE INPUT NODE INPUT     the end of a wire carried to another input
//   drop NODE OUTPUT X Y             a wire let go over the canvas, where the search opens; "type" answers it
//   type TEXT                        into the search that is open, and Return
//   set NODE FIELD TEXT              a value, as it is typed
//   slide NODE FIELD PART            a slider, dragged with the mouse to a part of its width from 0 to 1
//   select NODE...                   and no others
//   move NODE DX DY                  dragged with the mouse by its header
//   show NODE                        in the view
//   edit NODE                        in the view, by its mode
//   stroke X Y X Y                   the mouse dragged in the view, in pixels of the picture at full size
//   viewkey KEY                      pressed in the view, as "]" or "Shift+]"
//   key SEQUENCE                     "Ctrl+Z", "Delete", "D"
//   wait                             until all pictures are there
//   expect nodes N | wires N | value NODE FIELD TEXT | status TEXT
//   accept | cancel                  the dialog that is open
//   grab NAME                        a picture of the window, with the dialogs that are open
class Script
{
public:
    Script(EditorWindow& window, const QDir& folder);

    // All commands in order. The first one that cannot be done or is not fulfilled ends it; then false, and error()
    // says which line and why.
    bool run(const QString& text);
    QString error() const { return m_error; }

private:
    bool runLine(const QStringList& words);
    bool runFile(const QStringList& words);
    bool runNode(const QStringList& words);
    bool runWire(const QStringList& words);
    bool expect(const QStringList& words);
    bool set(const QStringList& words);
    bool slide(const QStringList& words);
    bool stroke(const QStringList& words);
    bool pressKeyInView(const QString& key);
    bool pressKey(const QString& sequence);
    bool type(const QString& text);
    bool wait();
    bool grab(const QString& name);
    bool endDialog(bool accepts);
    void drag(QGraphicsView& view, const QPointF& from, const QPointF& to);
    void answerSearch();
    bool fail(const QString& reason);

    EditorWindow& m_window;
    QDir m_folder;
    QString m_error;
    QString m_answer; // to the next search
};

} // namespace Host
