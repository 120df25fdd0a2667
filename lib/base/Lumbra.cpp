#include <base/Lumbra.h>

namespace Lumbra {

object_refcount::object_refcount() : count_(1) {}
object_refcount::object_refcount(const object_refcount&) : count_(1) {}
object_refcount& object_refcount::operator=(const object_refcount&) { return *this; }
object_refcount::~object_refcount() = default;

int object_refcount::addRef() const { return count_.fetch_add(1, std::memory_order_relaxed) + 1; }

int object_refcount::release() const {
    const int left = count_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) delete this;
    return left;
}

int object_refcount::getRefCount() const { return count_.load(std::memory_order_relaxed); }

namespace es {

base::base() = default;
base::base(const base&) = default;
base& base::operator=(const base&) = default;
base::~base() = default;

} // namespace es
} // namespace Lumbra
