#include "UserText.h"

#include "Text.h"

#include <algorithm>
#include <iterator>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr unsigned int kCopyrightSign = 0xA9; // first character of the names of QuickTime texts

/// 3GPP: version and flags, a packed language, then a text.
constexpr unsigned int kMobileTexts[] = {fourCC("titl"), fourCC("auth"), fourCC("dscp"),
                                         fourCC("perf"), fourCC("gnre"), fourCC("cprt")};
constexpr unsigned int kPlainTexts[] = {fourCC("name"), fourCC("sdp ")};

unsigned int load16(const unsigned char* bytes) {
    return static_cast<unsigned int>(bytes[0]) << 8 | bytes[1];
}

template <class List>
bool contains(const List& list, unsigned int type) {
    return std::find(std::begin(list), std::end(list), type) != std::end(list);
}

std::string withoutZeros(std::string text) {
    text.erase(std::find(text.begin(), text.end(), '\0'), text.end());
    return text;
}

} // namespace

std::string handlerName(const QT::HDLR& handler) {
    const unsigned char* bytes = handler.getComponentName();
    unsigned int size = handler.getComponentNameSize();
    if (!bytes || size == 0) return {};
    const unsigned int counted = bytes[0];
    const bool pascal =
        counted < size &&
        std::all_of(bytes + 1 + counted, bytes + size, [](unsigned char c) { return c == 0; }) &&
        std::all_of(bytes + 1, bytes + 1 + counted, [](unsigned char c) { return c != 0; });
    if (pascal) {
        ++bytes;
        size = counted;
    }
    return withoutZeros(markedText(bytes, size));
}

std::string userText(const QT::QTDataAtom& entry) {
    const unsigned char* bytes = entry.getData();
    const std::uint64_t count = entry.getSize() > 8 ? entry.getSize() - 8 : 0;
    constexpr std::uint64_t kTextHeader = 4;   // length and language, 16 bits each
    constexpr std::uint64_t kMobileHeader = 6; // version, flags, language
    if (!bytes) return {};
    if (entry.getType() >> 24 == kCopyrightSign && count >= kTextHeader) {
        return withoutZeros(
            markedText(bytes + kTextHeader, std::min<std::uint64_t>(load16(bytes), count - kTextHeader)));
    }
    if (contains(kMobileTexts, entry.getType()) && count > kMobileHeader) {
        return withoutZeros(markedText(bytes + kMobileHeader, count - kMobileHeader));
    }
    return contains(kPlainTexts, entry.getType()) ? withoutZeros(markedText(bytes, count)) : std::string();
}

Json userDataJson(const std::vector<QT::QTDataAtom*>& entries) {
    Json list = Json::array();
    for (const QT::QTDataAtom* entry : entries) {
        Json item{{"type", codeText(entry->getType())}, {"size", entry->getSize()}};
        if (const std::string text = userText(*entry); !text.empty()) {
            item["text"] = text;
        } else {
            item["data"] = hexText(entry->getData(), entry->getSize() > 8 ? entry->getSize() - 8 : 0);
        }
        list.push_back(std::move(item));
    }
    return list;
}

std::string sampleText(const unsigned char* bytes, unsigned int count) {
    if (!bytes || count < 2) return {};
    return withoutZeros(markedText(bytes + 2, std::min(load16(bytes), count - 2)));
}

} // namespace Ketra::Tool
