#pragma once

#include "fault_table.h"
#include "request_log.h"
#include "tree.h"

namespace Server {

/// What the control does with the listeners; implemented by the server.
class Listeners {
public:
    virtual ~Listeners() = default;
    /// Opens and closes listeners as the refusals in force want it; done when it returns.
    virtual void ApplyRefusals() = 0;
    /// Ends every open connection, except the control's own.
    virtual void DropConnections() = 0;
};

/// Changes the rules while the server runs, by GET on the control's own address:
///
///   .control/set?rule=RULE   puts a rule in force, answers its number
///   .control/clear[?id=N]    clears one rule, or all
///   .control/list            a line a rule: number, matches, text, with tabs between
///   .control/drop            ends every open connection
///   .control/put?path=PATH[&text=TEXT]
///                            serves this text at a path; without it the folders' file again
///   .control/append?path=PATH&text=TEXT[&times=N]
///                            puts the text behind what was put there, N times: a file that no
///                            query holds
///   .control/log[?from=N]    the log from its Nth byte on
///
/// What was asked for holds when the answer comes. Any thread.
class Control {
public:
    Control(Tree& tree, FaultTable& faults, const RequestLog& log, Listeners& listeners)
        : tree_(tree), faults_(faults), log_(log), listeners_(listeners) {}

    Answer Handle(const Target& target);

private:
    Answer Set(const Target& target);
    Answer Clear(const Target& target);
    Answer List(const Target& target);
    Answer Drop(const Target& target);
    Answer Put(const Target& target);
    Answer Append(const Target& target);
    Answer Log(const Target& target);

    Tree& tree_;
    FaultTable& faults_;
    const RequestLog& log_;
    Listeners& listeners_;
};

}  // namespace Server
