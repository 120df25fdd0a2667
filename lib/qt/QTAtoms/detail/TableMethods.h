// The methods that every table atom has under names of its own, spelled once.
#pragma once

#include <qt/wire/EntryTable.h>

/// The append method: it grows the stored size by the bytes that one entry takes in the file.
#define KETRA_TABLE_APPEND(Class, Record, Add, Bytes)                                                        \
    int Class::Add(Record* entry) {                                                                          \
        if (!table_->append(entry)) return -1;                                                               \
        size_ += (Bytes);                                                                                    \
        return 0;                                                                                            \
    }

/// Entry at the iterator, copy of the list, and the iterator's moves; `Name` is the stem of their names
/// (getCurrentNameData, getNameTable).
#define KETRA_TABLE_LIST(Class, Record, Name)                                                                \
    Record* Class::getCurrent##Name##Data() const { return table_->current(); }                              \
    std::vector<Record*> Class::get##Name##Table() const { return table_->records(); }                       \
    int Class::increaseIterator() {                                                                          \
        ++table_->cursor;                                                                                    \
        return 0;                                                                                            \
    }                                                                                                        \
    int Class::resetTableIterator() {                                                                        \
        table_->cursor = 0;                                                                                  \
        return 0;                                                                                            \
    }

#define KETRA_TABLE_METHODS(Class, Record, Add, Name, Bytes)                                                 \
    KETRA_TABLE_APPEND(Class, Record, Add, Bytes)                                                            \
    KETRA_TABLE_LIST(Class, Record, Name)

/// The count field, which may differ from the entries held.
#define KETRA_TABLE_COUNT(Class)                                                                             \
    unsigned int Class::getNumberOfEntries() const { return table_->declared; }                              \
    int Class::setNumberOfEntries(unsigned int count) {                                                      \
        table_->declared = count;                                                                            \
        return 0;                                                                                            \
    }

/// setIterator() for the tables that return nothing by it: a 1-based position.
#define KETRA_TABLE_SET_ITERATOR(Class)                                                                      \
    int Class::setIterator(unsigned int n) {                                                                 \
        table_->setCursor(n);                                                                                \
        return 0;                                                                                            \
    }

/// Constructors, assignment and destructor of an atom whose only owned member is its table. `Code` is the
/// type code and `Size` the size of a new atom.
#define KETRA_TABLE_LIFE(Class, Layout, Code, Size)                                                          \
    Class::Class() : QTAtom(Size, fourCC(Code)), table_(new wire::EntryTable<wire::Layout>) {}               \
    Class::Class(QTAtom* header) : QTAtom(header), table_(new wire::EntryTable<wire::Layout>) {}             \
    Class::Class(const Class& other)                                                                         \
        : QTAtom(other), version_(other.version_), flags_(other.flags_),                                     \
          table_(new wire::EntryTable<wire::Layout>(*other.table_)) {}                                       \
    Class& Class::operator=(const Class& other) {                                                            \
        if (this == &other) return *this;                                                                    \
        QTAtom::operator=(other);                                                                            \
        version_ = other.version_;                                                                           \
        flags_ = other.flags_;                                                                               \
        *table_ = *other.table_;                                                                             \
        return *this;                                                                                        \
    }                                                                                                        \
    Class::~Class() = default;
