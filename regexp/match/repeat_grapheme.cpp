// regexp/match/repeat_grapheme.cpp - repeats of NodeGrapheme (\X). The item
// is one grapheme cluster as ownReadCluster reads it, within the search area:
// a base character and the marks behind it.
//
// Stepping back needs the size of the last cluster, which cannot be read
// backwards. The sizes of the last clusters taken are kept in a small ring;
// when it runs dry the clusters are read again from the start of the repeat
// up to the place, each read limited to that place, which finds the same
// boundaries as the forward scan did.
//
// Tested by tests/match/repeat_grapheme_test.cpp.

#include "regexp/match/repeat_loops.h"

using namespace zevch_match;

namespace {

struct ClusterItems {
    static constexpr int32_t Kept = 64;
    int32_t sizes[Kept];
    int32_t kept = 0;   // sizes held, at most Kept
    int32_t top = 0;    // slot of the next size to keep
    bool unit = true;

    void keep(int32_t size) {
        sizes[top] = size;
        top = (top + 1) % Kept;
        kept = std::min(kept + 1, Kept);
    }

    int32_t take(const uint8_t* p, int32_t offset, int32_t remaining) {
        if (offset >= remaining) {
            return -1;
        }
        int32_t size = ownReadCluster(p + offset, remaining - offset);
        if (size <= 0) {
            return -1;
        }
        unit = unit && size == 1;
        keep(size);
        return size;
    }
    void scan(const uint8_t* p, int32_t remaining, int32_t& offset, int32_t& count, int32_t limit) {
        scanByTaking(*this, p, remaining, offset, count, limit);
    }
    bool unitSteps() const { return unit; }

    int32_t lastSize(const uint8_t* p, int32_t offset) {
        if (unit) {
            return 1;
        }
        if (kept == 0) {
            // Read the clusters again up to the place; the ring keeps the
            // last Kept of them.
            for (int32_t at = 0; at < offset;) {
                int32_t size = ownReadCluster(p + at, offset - at);
                if (size <= 0) {
                    size = offset - at;   // cannot happen on a boundary of the scan
                }
                keep(size);
                at += size;
            }
        }
        top = (top + Kept - 1) % Kept;
        --kept;
        return sizes[top];
    }
    static constexpr bool MayBeEmpty = false;
    bool emptyItems() const { return false; }
};

}  // namespace

int32_t ownRepeatGrapheme(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    RepeatBounds b = repeatBoundsOf(ctx);
    ClusterItems items;
    return greedyRepeat(p, remaining, ctx, b.min, std::min(b.max, remaining), b.next, items);
}

int32_t ownRepeatGraphemeLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    RepeatBounds b = repeatBoundsOf(ctx);
    ClusterItems items;
    return lazyRepeat(p, remaining, ctx, b.min, b.max, b.next, -1, items);
}
