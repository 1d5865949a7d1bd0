// tests/fuzz/fuzz_multi.cpp - the multi-pattern set: add, modify, delete and
// find, on the calling thread and in the parallel region.
//
// Input: slot count, a list of operation bytes, then up to eight patterns and
// the subject, separated by 0xFF. Each operation is checked against a model
// of the slots (lowest free slot for an add, lowest slot with the id for a
// modify or delete). Then the find runs twice, once with the thread count
// forced to the slot count (serial) and once below it (parallel); both must
// give what one zevsRegExpFind_8u per occupied slot gives, and leave the
// records of free slots untouched. Every slot holds a record of its own, as
// the parallel path requires.
#include "core/core.h"
#include "fuzz_input.h"
#include "psregexpmulti/multi_internal.h"

namespace {

constexpr uint32_t Untouched = 0xC0FFEE;

struct Slot {
    RegExpState* pattern = nullptr;
    uint32_t id = 0;
};

struct Outcome {
    std::vector<RegExpMultiResult> records;
    std::vector<std::vector<RegExpFindEntry>> finds;
};

Outcome find(const ExactBuffer<uint8_t>& subject, const RegExpMultiState* set, uint32_t slots,
             const std::vector<int32_t>& capacities, int32_t threads) {
    Outcome o;
    o.records.resize(slots);
    o.finds.resize(slots);
    for (uint32_t i = 0; i < slots; ++i) {
        o.finds[i].assign(static_cast<size_t>(std::max(capacities[i], 1)), RegExpFindEntry{nullptr, -77});
        o.records[i] = RegExpMultiResult{Untouched, Untouched, capacities[i], static_cast<zevStatus>(Untouched),
                                         o.finds[i].data()};
    }
    ownSetNumThreadsOverride(threads);
    const zevStatus s = zevsRegExpMultiFind_8u(subject.data, static_cast<int32_t>(subject.size),
                                               o.records.data(), set);
    ownSetNumThreadsOverride(0);
    if (subject.size == 0) {
        FUZZ_CHECK(s == zevStatusBadSize);
        for (const RegExpMultiResult& r : o.records) FUZZ_CHECK(r.done == Untouched);
    } else {
        FUZZ_CHECK(s == zevStatusOk);
    }
    return o;
}

// What an add, modify or delete must return: the id 0 is refused first, then
// a missing slot gives `missing`.
zevStatus expected(uint32_t id, int slot, zevStatus missing) {
    if (id == 0) return zevStatusBadId;
    return slot < 0 ? missing : zevStatusOk;
}

void sameOutcome(const Outcome& a, const Outcome& b) {
    for (size_t i = 0; i < a.records.size(); ++i) {
        const RegExpMultiResult& x = a.records[i];
        const RegExpMultiResult& y = b.records[i];
        FUZZ_CHECK(x.done == y.done && x.id == y.id && x.findCount == y.findCount && x.status == y.status);
        for (size_t k = 0; k < a.finds[i].size(); ++k) {
            FUZZ_CHECK(a.finds[i][k].start == b.finds[i][k].start);
            FUZZ_CHECK(a.finds[i][k].length == b.finds[i][k].length);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    const uint32_t slots = 1 + in.below(12);
    const std::vector<uint8_t> ops = in.next(false);
    std::vector<std::vector<uint8_t>> texts;
    for (int i = 0; i < 8 && !in.empty(); ++i) texts.push_back(in.next(true));
    const std::vector<uint8_t> subjectBytes = texts.empty() ? std::vector<uint8_t>() : texts.back();
    if (!texts.empty()) texts.pop_back();
    if (texts.empty()) texts.push_back({'a'});

    // A pool of records, each used by at most one slot at a time.
    std::vector<RegExpState*> pool;
    for (size_t i = 0; i < 16 && pool.size() < 16; ++i) {
        const std::vector<uint8_t> options = (i & 1) ? std::vector<uint8_t>{'g'} : std::vector<uint8_t>{};
        if (RegExpState* st = fuzzCompile(texts[i % texts.size()], options, static_cast<int32_t>(50 + 300 * (i % 4))))
            pool.push_back(st);
    }
    if (pool.empty()) return 0;
    std::vector<bool> inUse(pool.size(), false);

    uint32_t bytes = 0;
    FUZZ_CHECK(zevsRegExpMultiGetSize(slots, &bytes) == zevStatusOk);
    FUZZ_CHECK(bytes == (sizeof(void*) + 4) * slots + 3 * sizeof(void*));
    ExactBuffer<uint8_t> block(bytes);
    std::memset(block.data, 0xAB, block.size);
    RegExpMultiState* set = reinterpret_cast<RegExpMultiState*>(block.data);
    FUZZ_CHECK(zevsRegExpMultiInit(set, slots) == zevStatusOk);
    std::vector<Slot> model(slots);

    auto freeRecord = [&]() -> int {
        for (size_t i = 0; i < pool.size(); ++i)
            if (!inUse[i]) return static_cast<int>(i);
        return -1;
    };
    auto lowestWithId = [&](uint32_t id) -> int {
        for (uint32_t i = 0; i < slots; ++i)
            if (model[i].id == id) return static_cast<int>(i);
        return -1;
    };
    auto release = [&](RegExpState* st) {
        for (size_t i = 0; i < pool.size(); ++i)
            if (pool[i] == st) inUse[i] = false;
    };

    for (uint8_t op : ops) {
        const uint32_t id = op & 7;   // id 0 is refused by all three
        switch (op >> 6) {
            case 0:
            case 1: {   // add: the lowest free slot
                const int r = freeRecord();
                if (r < 0) break;
                int slot = -1;
                for (uint32_t i = 0; i < slots && slot < 0; ++i)
                    if (model[i].pattern == nullptr) slot = static_cast<int>(i);
                const zevStatus s = zevsRegExpMultiAdd(pool[r], id, set);
                FUZZ_CHECK(s == expected(id, slot, zevStatusTableFull));
                if (s != zevStatusOk) break;
                model[slot] = Slot{pool[r], id};
                inUse[r] = true;
                break;
            }
            case 2: {   // modify: the lowest slot with the id
                const int r = freeRecord();
                if (r < 0) break;
                const int slot = lowestWithId(id);
                const zevStatus s = zevsRegExpMultiModify(pool[r], id, set);
                FUZZ_CHECK(s == expected(id, slot, zevStatusEntryNotFound));
                if (s != zevStatusOk) break;
                release(model[slot].pattern);
                model[slot].pattern = pool[r];
                inUse[r] = true;
                break;
            }
            default: {   // delete: the lowest slot with the id
                const int slot = lowestWithId(id);
                const zevStatus s = zevsRegExpMultiDelete(id, set);
                FUZZ_CHECK(s == expected(id, slot, zevStatusEntryNotFound));
                if (s != zevStatusOk) break;
                release(model[slot].pattern);
                model[slot] = Slot{};
                break;
            }
        }
    }
    for (uint32_t i = 0; i < slots; ++i) {
        FUZZ_CHECK(set->patterns[i] == model[i].pattern);
        FUZZ_CHECK(set->ids[i] == model[i].id);
    }

    std::vector<int32_t> capacities(slots);
    for (uint32_t i = 0; i < slots; ++i) capacities[i] = static_cast<int32_t>(in.below(12)) - 1;
    const ExactBuffer<uint8_t> subject(subjectBytes.data(), subjectBytes.size());
    const Outcome serial = find(subject, set, slots, capacities, static_cast<int32_t>(slots));
    const int32_t fewer = 1 + static_cast<int32_t>(slots > 1 ? in.below(slots - 1) : 0);
    const Outcome parallel = find(subject, set, slots, capacities, slots > 1 ? fewer : 1);
    sameOutcome(serial, parallel);
    if (!subject.size) {
        for (RegExpState* st : pool) zevsRegExpFree(st);
        return 0;
    }
    for (uint32_t i = 0; i < slots; ++i) {
        const RegExpMultiResult& r = serial.records[i];
        if (model[i].pattern == nullptr) {
            FUZZ_CHECK(r.done == Untouched && r.id == Untouched);
            continue;
        }
        std::vector<RegExpFindEntry> alone(serial.finds[i].size(), RegExpFindEntry{nullptr, -77});
        int32_t count = capacities[i];
        const zevStatus s = zevsRegExpFind_8u(subject.data, static_cast<int32_t>(subject.size),
                                              model[i].pattern, alone.data(), &count);
        FUZZ_CHECK(r.done == 1 && r.id == model[i].id && r.status == s && r.findCount == count);
        for (size_t k = 0; k < alone.size(); ++k) {
            FUZZ_CHECK(alone[k].start == serial.finds[i][k].start);
            FUZZ_CHECK(alone[k].length == serial.finds[i][k].length);
        }
    }
    for (RegExpState* st : pool) zevsRegExpFree(st);
    return 0;
}
