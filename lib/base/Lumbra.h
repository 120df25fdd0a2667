// The two roots of the base library: the reference count and the base of every exception.
#pragma once

#include <base/Export.h>

#include <atomic>

// What objects with a reference count and exceptions derive from.
namespace Lumbra {

// A reference count for objects created with new. It starts at 1, which is the creator's own reference.
// addRef and release may be called from several threads.
class KETRA_QT_API object_refcount {
public:
    object_refcount();
    object_refcount(const object_refcount&);            // a copy is an object of its own: it starts at 1
    object_refcount& operator=(const object_refcount&); // both counts stay
    virtual ~object_refcount();

    int addRef() const;  // the new count
    int release() const; // the new count; deletes the object at 0
    int getRefCount() const;

private:
    mutable std::atomic<int> count_;
};

namespace es {

// Base of the exceptions, to catch them all by one type.
class KETRA_QT_API base {
public:
    base();
    base(const base&);
    base& operator=(const base&);
    virtual ~base();
};

} // namespace es
} // namespace Lumbra
