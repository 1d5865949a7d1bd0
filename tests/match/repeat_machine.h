// tests/match/repeat_machine.h - runs hand-built node arrays through the
// interpreter, so that the repeat matchers can be tested without the
// compiler: the nodes of a pattern are written out, the subject is given, and
// the run reports its result, the budget left and captures[0].length.
#pragma once

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "regexp/match/match_internal.h"
#include "regexp/regexp_record.h"

namespace repeat_test {

inline RegExpNode node(uint32_t kind, int32_t w1 = 0, int32_t w2 = 0, int32_t w3 = 0, uint32_t w4 = 0) {
    return RegExpNode{kind, w1, w2, w3, w4};
}
inline RegExpNode chr(uint8_t c, int32_t invert = 0) { return node(NodeChar, c, 0, invert); }
inline RegExpNode greedy(int32_t min, int32_t max) { return node(NodeRepeat, min, max); }
inline RegExpNode lazy(int32_t min, int32_t max) { return node(NodeRepeatLazy, min, max); }
inline RegExpNode type(char letter) { return node(NodeCharType, letter); }
inline RegExpNode wide(int32_t code) { return node(NodeWideChar, code); }
inline RegExpNode cls(int32_t items, int32_t negated = 0) { return node(NodeClass, negated, items); }
inline RegExpNode range(int32_t low, int32_t high, int32_t invert = 0) {
    return node(NodeRange, low, high, invert);
}
constexpr int32_t Many = RepeatUnbounded;

struct Outcome {
    int32_t result;
    int32_t budgetLeft;
    int32_t length;   // captures[0].length afterwards
    bool operator==(const Outcome& o) const {
        return result == o.result && budgetLeft == o.budgetLeft && length == o.length;
    }
};

inline std::ostream& operator<<(std::ostream& os, const Outcome& o) {
    return os << "{result " << o.result << ", budget " << o.budgetLeft << ", length " << o.length << "}";
}

// A record holding `nodes` and, behind them, the literal bytes of NodeString
// nodes (whose word4 is then an offset into `literals`, fixed up here).
class Machine {
public:
    explicit Machine(std::vector<RegExpNode> nodes, const std::string& literals = "") {
        size_t nodeBytes = nodes.size() * sizeof(RegExpNode);
        block_.assign(sizeof(RegExpState) + nodeBytes + literals.size() + 8, 0);
        state_ = reinterpret_cast<RegExpState*>(block_.data());
        state_->magic = RegExpMagic;
        state_->nodeCount = static_cast<int32_t>(nodes.size());
        state_->captureCount = 10;
        uint32_t literalBase = static_cast<uint32_t>(offsetof(RegExpState, nodes) + nodeBytes);
        for (RegExpNode& n : nodes) {
            if (n.kind == NodeString) {
                n.word4 += literalBase;
            }
        }
        if (!nodes.empty()) {
            std::memcpy(state_->nodes, nodes.data(), nodeBytes);
        }
        std::memcpy(block_.data() + literalBase, literals.data(), literals.size());
    }

    RegExpState* state() { return state_; }
    MatchContext& context() { return ctx_; }

    // Runs node 0 at subject[start] with the search area ending `areaEnd`
    // bytes into the subject (-1: its true end). `setup` may adjust the
    // context (captures, flags) before the run.
    template <class Setup>
    Outcome run(const std::string& subject, int32_t budget, int32_t fastPaths, int32_t start, int32_t areaEnd,
                Setup setup) {
        subject_ = subject;
        const uint8_t* s = reinterpret_cast<const uint8_t*>(subject_.data());
        int32_t end = areaEnd < 0 ? static_cast<int32_t>(subject_.size()) : areaEnd;
        ctx_ = MatchContext{};
        ctx_.currentNode = 0;
        ctx_.endNode = state_->nodeCount;
        ctx_.captureCount = state_->captureCount;
        ctx_.budget = budget;
        ctx_.format = 1;
        ctx_.subject = s;
        ctx_.nodes = state_->nodes;
        ctx_.captures = state_->captures;
        ctx_.groups = state_->groups;
        ctx_.state = state_;
        ctx_.subjectLength = static_cast<int32_t>(subject_.size());
        ctx_.fastPaths = fastPaths;
        ctx_.stackLimit = nullptr;
        for (int32_t i = 0; i < state_->captureCount; ++i) {
            state_->captures[i] = CaptureRecord{0, -1};
        }
        state_->captures[0] = CaptureRecord{start, 0};
        setup(ctx_);
        int32_t result = ownRegExpMatch(s + start, end - start, &ctx_);
        return Outcome{result, ctx_.budget, state_->captures[0].length};
    }

    Outcome run(const std::string& subject, int32_t budget = 1000, int32_t fastPaths = 0, int32_t start = 0,
                int32_t areaEnd = -1) {
        return run(subject, budget, fastPaths, start, areaEnd, [](MatchContext&) {});
    }

    // The same run with the shortcuts off and on; both must agree.
    template <class Setup>
    Outcome both(const std::string& subject, int32_t budget, int32_t start, int32_t areaEnd, Setup setup,
                 bool* agree) {
        Outcome plain = run(subject, budget, 0, start, areaEnd, setup);
        Outcome fast = run(subject, budget, 1, start, areaEnd, setup);
        *agree = plain == fast;
        return plain;
    }

private:
    std::vector<uint8_t> block_;
    RegExpState* state_ = nullptr;
    MatchContext ctx_{};
    std::string subject_;
};

// Budget spent by a run from `budget` units.
inline int32_t spent(const Outcome& o, int32_t budget) { return budget - o.budgetLeft; }

}  // namespace repeat_test
