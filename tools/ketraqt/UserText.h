// What user data entries, chapter samples and handler names say.
#pragma once

#include "Json.h"

#include <qt/QTAtoms/media/HDLR.h>
#include <qt/QTAtoms/movie/UDTA.h>

#include <string>

namespace Ketra::Tool {

/// The component name without the length byte and zero bytes that it may come with.
std::string handlerName(const QT::HDLR& handler);

/// The first text of an entry, as far as the kind of its name is known; empty otherwise.
std::string userText(const QT::QTDataAtom& entry);

/// [{type, size, text or data}]
Json userDataJson(const std::vector<QT::QTDataAtom*>& entries);

/// A text sample: a 16-bit length and that many bytes.
std::string sampleText(const unsigned char* bytes, unsigned int count);

} // namespace Ketra::Tool
