#include "remux/Extensions.h"

#include <algorithm>
#include <iterator>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::size_t kHeader = 8;

} // namespace

void putNumber(Bytes& bytes, std::uint64_t value, unsigned int width) {
    while (width-- > 0) {
        bytes.push_back(static_cast<unsigned char>(width < 8 ? value >> (8 * width) : 0));
    }
}

std::uint64_t numberIn(const Bytes& bytes, std::size_t at, unsigned int width) {
    std::uint64_t value = 0;
    for (unsigned int i = 0; i < width && at + i < bytes.size(); ++i) {
        value = value << 8 | bytes[at + i];
    }
    return value;
}

unsigned int typeOf(const Bytes& atom) { return static_cast<unsigned int>(numberIn(atom, 4, 4)); }

std::vector<Bytes> extensionsOf(const Bytes& body, std::size_t from) {
    std::vector<Bytes> atoms;
    while (from <= body.size() && body.size() - from >= kHeader) {
        const auto size = static_cast<std::size_t>(numberIn(body, from, 4));
        if (size < kHeader || size > body.size() - from || numberIn(body, from + 4, 4) == 0) break;
        const auto start = body.begin() + static_cast<std::ptrdiff_t>(from);
        atoms.emplace_back(start, start + static_cast<std::ptrdiff_t>(size));
        from += size;
    }
    return atoms;
}

bool findExtension(const Bytes& body, std::size_t from, unsigned int type) {
    const std::vector<Bytes> atoms = extensionsOf(body, from);
    return std::any_of(atoms.begin(), atoms.end(),
                       [type](const Bytes& atom) { return typeOf(atom) == type; });
}

std::vector<Bytes> flatExtensionsOf(const Bytes& body, std::size_t from) {
    std::vector<Bytes> flat;
    for (Bytes& atom : extensionsOf(body, from)) {
        if (typeOf(atom) == fourCC("wave")) {
            for (Bytes& child : extensionsOf(atom, kHeader)) {
                flat.push_back(std::move(child));
            }
        } else {
            flat.push_back(std::move(atom));
        }
    }
    return flat;
}

std::size_t soundBodySize(const Bytes& body) {
    constexpr std::size_t kSizes[] = {20, 36, 56};
    const auto version = static_cast<std::size_t>(numberIn(body, 0, 2));
    return kSizes[version < std::size(kSizes) ? version : 0];
}

bool isBuiltExtension(unsigned int type) {
    constexpr unsigned int kTypes[] = {fourCC("frma"), fourCC("enda"), fourCC("mp4a"), fourCC("esds"),
                                       fourCC("alac"), fourCC("damr"), fourCC("dqcp"), fourCC("devc")};
    return std::find(std::begin(kTypes), std::end(kTypes), type) != std::end(kTypes);
}

Bytes withChild(const Bytes& container, const Bytes& child) {
    std::size_t at = kHeader;
    for (const Bytes& held : extensionsOf(container, kHeader)) {
        if (typeOf(held) != typeOf(child)) {
            at += held.size();
            continue;
        }
        Bytes whole;
        putNumber(whole, container.size() - held.size() + child.size(), 4);
        whole.insert(whole.end(), container.begin() + 4, container.begin() + static_cast<std::ptrdiff_t>(at));
        whole.insert(whole.end(), child.begin(), child.end());
        whole.insert(whole.end(), container.begin() + static_cast<std::ptrdiff_t>(at + held.size()),
                     container.end());
        return whole;
    }
    return {};
}

} // namespace Ketra::Tool
