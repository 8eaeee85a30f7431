#pragma once

#include <QStringList>

#include <random>

namespace Host
{

class EditorWindow;
class Script;
struct InputInfo;
struct NodeRecord;

// Edits what a window has open, as a user might, in an order that the seed decides alone. Nodes are kept so few and
// their values such that pictures are quick to compute.
class RandomEdits
{
public:
    // `picture`: an imported node that is never removed nor replaced, so that there is something to edit in the view.
    RandomEdits(EditorWindow& window, Script& script, unsigned int seed, const QString& picture);

    QString step(); // one edit; what it was
    void step(int count);
    QStringList log() const { return m_log; }           // of all steps so far
    QStringList problems() const { return m_problems; } // events that could not be played
    int strokes() const { return m_strokes; }           // in the view that changed their node

    int below(int end) { return int(m_random() % unsigned(end)); }

private:
    using Action = void (RandomEdits::*)();
    quint64 anyNode();
    quint64 spareNode(); // any but the picture's; 0 if there is none
    QString anyType();
    void add();
    void wire();
    void unwire();
    void setValue();
    void setHiddenValue(quint64 node, const QString& field);
    void move();
    void bypass();
    void replace();
    void rename();
    void addFrame();
    void changeFrame();
    void select();
    void duplicate();
    void cutAndPaste();
    void remove();
    void stroke();
    void pressKey();
    void undo();
    QString textFor(const InputInfo& input);

    EditorWindow& m_window;
    Script& m_script;
    std::mt19937 m_random;
    quint64 m_picture;
    QStringList m_log, m_problems;
    int m_strokes = 0;
};

} // namespace Host
