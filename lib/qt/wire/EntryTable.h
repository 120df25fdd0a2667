// The table behind every table atom.
//
// Records as they stand in the file stay packed: the payload block itself is the table, and a lookup decodes
// one entry of it. The public interface hands records out as pointers; the first such call, and the first
// record that a caller passes in, turns the table into objects. Ten million samples thus cost their bytes in
// the file and nothing else until somebody asks for objects.
//
// The count that the atom states (`declared`) and the entries held are two things on purpose: they differ
// when a file promises more than it has, and writing such a table fails.
#pragma once

#include <qt/wire/Block.h>
#include <qt/wire/Expect.h>
#include <qt/wire/Payload.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

namespace Ketra::QT::wire {

/// Entries of a fixed width in file order and file byte order. A Layout names one entry: its `Value`, its
/// `width`, read() and write(). Entries pushed at the end that repeat the last one are only counted: a movie
/// being written adds the same duration a million times.
template <class Layout>
class PackedArray {
public:
    using Value = typename Layout::Value;

    PackedArray() = default;
    PackedArray(const PackedArray& other)
        : first_(0), count_(other.count_), repeats_(other.repeats_), room_(other.count_) {
        block_ = allocateRaw(count_ * Layout::width);
        if (!block_) throw std::bad_alloc();
        if (count_) std::memcpy(block_.get(), other.data(), static_cast<std::size_t>(count_ * Layout::width));
    }
    PackedArray(PackedArray&& other) noexcept { swap(other); }
    PackedArray& operator=(PackedArray other) noexcept {
        swap(other);
        return *this;
    }
    ~PackedArray() = default;

    static constexpr unsigned int width() { return Layout::width; }
    std::uint64_t size() const { return count_ + repeats_; }
    std::uint64_t stored() const { return count_; } ///< entries that have bytes of their own
    const unsigned char* bytes(std::uint64_t i) const { return data() + i * Layout::width; }
    Value at(std::uint64_t i) const { return Layout::read(data() + std::min(i, count_ - 1) * Layout::width); }

    /// Takes over the payload block (or, when the reader does not own it, copies) from byte `first` on.
    void adopt(Payload& payload, const unsigned char* bytes, std::uint64_t first, std::uint64_t count) {
        if (payload.data) {
            block_ = std::move(payload.data);
            first_ = first;
        } else {
            block_ = allocateRaw(count * Layout::width);
            if (!block_) throw std::bad_alloc();
            std::memcpy(block_.get(), bytes + first, static_cast<std::size_t>(count * Layout::width));
            first_ = 0;
        }
        count_ = count;
        repeats_ = 0;
        room_ = count;
    }
    void push(const Value& value) {
        unsigned char bytes[Layout::width];
        Layout::write(bytes, value);
        if (count_ && std::memcmp(bytes, data() + (count_ - 1) * Layout::width, Layout::width) == 0) {
            ++repeats_;
            return;
        }
        if (repeats_) writeRepeats();
        add(bytes);
    }
    /// Drops all behind the first `count`, and the room they took when it was much.
    void truncate(std::uint64_t count) {
        repeats_ = count > count_ ? std::min(repeats_, count - count_) : 0;
        count_ = std::min(count_, count);
        if (count_ >= room_ - room_ / 4) return;
        // A block of its own: what a shrunken one leaves behind it is of little use to anybody.
        PackedArray exact(*this);
        swap(exact);
    }
    void set(std::uint64_t i, const Value& value) {
        if (repeats_ && i + 1 >= count_) writeRepeats();
        Layout::write(block_.get() + first_ + i * Layout::width, value);
    }
    void clear() { *this = PackedArray(); }

private:
    void swap(PackedArray& other) noexcept {
        std::swap(block_, other.block_);
        std::swap(first_, other.first_);
        std::swap(count_, other.count_);
        std::swap(repeats_, other.repeats_);
        std::swap(room_, other.room_);
    }
    const unsigned char* data() const { return block_.get() + first_; }
    void add(const unsigned char* bytes) {
        if (count_ == room_) grow(std::max<std::uint64_t>(64, count_ + count_ / 2));
        std::memcpy(block_.get() + first_ + count_ * Layout::width, bytes, Layout::width);
        ++count_;
    }
    void writeRepeats() {
        unsigned char bytes[Layout::width];
        std::memcpy(bytes, data() + (count_ - 1) * Layout::width, Layout::width);
        if (count_ + repeats_ > room_) grow(count_ + repeats_ + (count_ + repeats_) / 2);
        for (; repeats_; --repeats_) {
            add(bytes);
        }
    }
    void grow(std::uint64_t room) {
        auto* block = static_cast<unsigned char*>(
            std::realloc(block_.get(), static_cast<std::size_t>(first_ + room * Layout::width)));
        if (!block) throw std::bad_alloc();
        static_cast<void>(block_.release());
        block_.reset(block);
        room_ = room;
    }

    MallocPtr block_;
    std::uint64_t first_ = 0; // byte of the block at which the entries begin
    std::uint64_t count_ = 0;
    std::uint64_t repeats_ = 0; // of the last entry, behind it
    std::uint64_t room_ = 0;
};

/// Where the packed entries of a Layout live: an array, unless the layout names a store of its own.
template <class Layout, class = void>
struct StoreOf {
    using type = PackedArray<Layout>;
};
template <class Layout>
struct StoreOf<Layout, std::void_t<typename Layout::Store>> {
    using type = typename Layout::Store;
};

template <class Layout>
class EntryTable {
public:
    using Record = typename Layout::Record;
    using Value = typename Layout::Value;
    using Store = typename StoreOf<Layout>::type;

    unsigned int declared = 0; // the count field
    unsigned int cursor = 0;   // the public iterator's index

    EntryTable() = default;
    EntryTable(const EntryTable& other)
        : declared(other.declared), cursor(other.cursor), store_(other.store_), asObjects_(other.asObjects_) {
        objects_.reserve(other.objects_.size());
        for (const Record* record : other.objects_) {
            objects_.push_back(new Record(*record));
        }
    }
    EntryTable& operator=(const EntryTable& other) {
        EntryTable copy(other);
        std::swap(declared, copy.declared);
        std::swap(cursor, copy.cursor);
        std::swap(store_, copy.store_);
        std::swap(objects_, copy.objects_);
        std::swap(asObjects_, copy.asObjects_);
        ++generation_;
        return *this;
    }
    ~EntryTable() { dropObjects(); }

    std::uint64_t held() const { return asObjects_ ? objects_.size() : store_.size(); }
    bool consistent() const { return declared == held(); }
    /// Entries that both the count and the table have: sums run over these.
    std::uint64_t counted() const { return std::min<std::uint64_t>(declared, held()); }
    Value at(std::uint64_t i) const {
        return asObjects_ ? Layout::value(*objects_[static_cast<std::size_t>(i)]) : store_.at(i);
    }

    // --- packed entries: what the inside works on
    bool packed() const { return !asObjects_; }
    const Store& store() const { return store_; }
    /// Has those of the entries that are packed on their way from memory.
    KETRA_QT_INLINED void expect(std::uint64_t first, std::uint64_t count) const {
        const std::uint64_t stored = store_.stored();
        if (first >= stored) return;
        wire::expect(store_.bytes(first), std::min(count, stored - first) * store_.width());
    }
    /// For a parse or a change of the whole table; drops the objects.
    Store& replaceStore() {
        dropObjects();
        asObjects_ = false;
        ++generation_;
        return store_;
    }
    /// For a change that the table has no call for; while there are objects the store is empty.
    Store& changeStore() {
        ++generation_;
        return store_;
    }
    /// Grows with every change of packed entries; an index built for one generation serves only that one, and
    /// only while the table is packed (an object may be changed by whoever holds it).
    unsigned int generation() const { return generation_; }
    /// Appends without an object; the count grows too.
    void append(const Value& value) {
        if (asObjects_) {
            objects_.push_back(Layout::record(value));
        } else {
            store_.push(value);
            ++generation_;
        }
        ++declared;
    }
    /// Every entry becomes change(entry); objects stay the objects they were.
    template <class Change>
    void transform(Change change) {
        for (std::uint64_t i = 0; i < held(); ++i) {
            put(i, change(at(i)));
        }
        ++generation_;
    }
    /// Merges neighbours: `merge(last, next)` either absorbs the next value into the last one and says so, or
    /// leaves both. A record that survives stays the object it was; one that is absorbed is deleted.
    template <class Merge>
    void mergeNeighbours(Merge merge) {
        const std::uint64_t count = held();
        if (count == 0) return;
        std::uint64_t kept = 0;
        Value last = at(0);
        for (std::uint64_t i = 1; i < count; ++i) {
            const Value next = at(i);
            if (merge(last, next)) {
                if (asObjects_) delete objects_[static_cast<std::size_t>(i)];
                continue;
            }
            put(kept++, last);
            if (asObjects_) objects_[static_cast<std::size_t>(kept)] = objects_[static_cast<std::size_t>(i)];
            last = next;
        }
        if (asObjects_) {
            put(kept, last);
            objects_.resize(static_cast<std::size_t>(kept + 1));
        } else {
            if (kept + 1 != count) ++generation_;
            store_.truncate(kept + 1);
            store_.set(kept, last);
        }
        mergedAt_ = generation_;
    }
    /// Nothing has changed since the neighbours were merged.
    bool merged() const { return !asObjects_ && mergedAt_ == generation_; }
    /// Used by the reader: takes as many whole entries as lie within the delivered bytes; returns their
    /// bytes.
    std::uint64_t adoptPacked(Payload& payload, const unsigned char* bytes, std::uint64_t first,
                              std::uint64_t count, std::uint64_t end) {
        Store& store = replaceStore();
        store.clear();
        count = std::min(count, (end - first) / store.width());
        if (count) store.adopt(payload, bytes, first, count);
        return count * store.width();
    }
    /// Writes every entry held, or only measures without a block; returns the bytes.
    std::uint64_t write(unsigned char* to) const {
        const std::uint64_t count = held();
        if (to) {
            for (std::uint64_t i = 0; i < count; ++i) {
                Layout::write(to + i * Layout::width, at(i));
            }
        }
        return count * Layout::width;
    }

    // --- records: what the public interface works on
    /// Borrowed; null beyond the entries held.
    Record* record(std::uint64_t i) const {
        if (i >= held()) return nullptr;
        makeObjects();
        return objects_[static_cast<std::size_t>(i)];
    }
    Record* current() const { return record(cursor); }
    /// Adopts; the count grows. False, nothing taken, for null.
    bool append(Record* record) {
        if (!record) return false;
        makeObjects();
        objects_.push_back(record);
        ++declared;
        return true;
    }
    std::vector<Record*> records() const {
        makeObjects();
        return objects_;
    }
    /// Adopts the caller's records and sets the count; records of the old table that are not among the new
    /// are deleted, nulls are dropped.
    void replace(std::vector<Record*> records) {
        records.erase(std::remove(records.begin(), records.end(), nullptr), records.end());
        std::vector<Record*> kept(records);
        std::sort(kept.begin(), kept.end());
        for (Record* old : objects_) {
            if (!std::binary_search(kept.begin(), kept.end(), old)) delete old;
        }
        objects_ = std::move(records);
        asObjects_ = true;
        store_.clear();
        declared = static_cast<unsigned int>(objects_.size());
    }
    /// The public iterator is set by a 1-based position.
    void setCursor(unsigned int position) { cursor = position ? position - 1 : 0; }

private:
    void put(std::uint64_t i, const Value& value) {
        if (asObjects_) {
            Layout::assign(*objects_[static_cast<std::size_t>(i)], value);
        } else {
            store_.set(i, value);
        }
    }
    void makeObjects() const {
        if (asObjects_) return;
        const std::uint64_t count = store_.size();
        try {
            objects_.reserve(static_cast<std::size_t>(count));
            for (std::uint64_t i = 0; i < count; ++i) {
                objects_.push_back(Layout::record(store_.at(i)));
            }
        } catch (...) {
            dropObjects(); // the table stays what it was
            throw;
        }
        store_.clear();
        asObjects_ = true;
    }
    void dropObjects() const {
        for (Record* record : objects_) {
            delete record;
        }
        objects_.clear();
    }

    mutable Store store_;
    mutable std::vector<Record*> objects_;
    mutable bool asObjects_ = false;
    unsigned int generation_ = 0;
    unsigned int mergedAt_ = ~0U; // the generation whose neighbours were merged
};

} // namespace Ketra::QT::wire
