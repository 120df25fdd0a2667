// Objects that an atom holds beside its children: sample descriptions, descriptors, a codec entry's child.
#pragma once

#include <qt/wire/Growth.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace Ketra::QT::wire {

/// A list that owns what was put into it. A copy lists the same objects and owns none of them; what is added
/// to the copy later is the copy's own.
template <class T>
class HeldList {
public:
    unsigned int declared = 0; // the count field of a list that has one
    unsigned int cursor = 0;   // the public iterator's index

    HeldList() = default;
    HeldList(const HeldList& other) : declared(other.declared), cursor(other.cursor), items_(other.items_) {}
    HeldList(HeldList&&) = default;
    HeldList& operator=(const HeldList& other) {
        if (this != &other) *this = HeldList(other);
        return *this;
    }
    HeldList& operator=(HeldList&&) = default;
    ~HeldList() = default;

    std::uint64_t held() const { return items_.size(); }
    bool consistent() const { return declared == held(); }
    const std::vector<T*>& items() const { return items_; }
    std::vector<T*> records() const { return items_; }
    /// Borrowed; null beyond the objects held.
    T* record(std::uint64_t i) const {
        return i < items_.size() ? items_[static_cast<std::size_t>(i)] : nullptr;
    }
    T* current() const { return record(cursor); }
    T* first() const { return record(0); }
    void setCursor(unsigned int position) { cursor = position ? position - 1 : 0; } // 1-based

    /// Adopts; the count grows. False, nothing taken, for null.
    bool append(T* item) {
        if (!item) return false;
        makeRoomForOne(items_);
        owned_.emplace_back(item);
        items_.push_back(item);
        ++declared;
        return true;
    }
    bool append(std::unique_ptr<T> item) {
        const bool taken = append(item.get());
        if (taken) static_cast<void>(item.release());
        return taken;
    }
    /// Adopts the objects given and deletes those of its own that are not among them; nulls are dropped.
    void replace(std::vector<T*> items) {
        items.erase(std::remove(items.begin(), items.end(), nullptr), items.end());
        std::vector<std::unique_ptr<T>> owned;
        owned.reserve(items.size());
        for (T* item : items) {
            const bool listed = std::find(items_.begin(), items_.end(), item) != items_.end();
            const auto mine = std::find_if(owned_.begin(), owned_.end(),
                                           [item](const std::unique_ptr<T>& p) { return p.get() == item; });
            if (mine != owned_.end()) {
                owned.push_back(std::move(*mine));
                owned_.erase(mine);
            } else if (!listed) {
                owned.emplace_back(item);
            }
        }
        owned_ = std::move(owned);
        items_ = std::move(items);
        declared = static_cast<unsigned int>(items_.size());
    }
    void clear() { replace({}); }
    /// For a list that holds one object or none.
    void set(T* item) {
        if (item != first()) replace({item});
    }

private:
    std::vector<T*> items_;
    std::vector<std::unique_ptr<T>> owned_;
};

} // namespace Ketra::QT::wire
