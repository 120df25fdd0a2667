// The buffers with a reference count: RBuffer, RData, RString.
#pragma once

#include <base/CBuffer.h>
#include <base/CData.h>
#include <base/CString.h>
#include <base/Export.h>
#include <base/Lumbra.h>

namespace Ketra {

// A buffer with a reference count.
class KETRA_QT_API RBuffer : public CBuffer, public Lumbra::object_refcount {
public:
    using CBuffer::CBuffer;
    RBuffer();
    explicit RBuffer(const CBuffer&); // copies the bytes
    RBuffer(const RBuffer&);
    RBuffer& operator=(const RBuffer&);
    ~RBuffer() override;
};

// A buffer with a cursor and a reference count.
class KETRA_QT_API RData : public CData, public Lumbra::object_refcount {
public:
    using CData::CData;
    RData();
    explicit RData(const CData&); // copies the bytes and the cursor
    RData(const RData&);
    RData& operator=(const RData&);
    ~RData() override;
};

// A string with a reference count.
class KETRA_QT_API RString : public CString, public Lumbra::object_refcount {
public:
    using CString::CString;
    RString();
    explicit RString(const CString&); // copies the bytes
    RString(const RString&);
    RString& operator=(const RString&);
    ~RString() override;
};

} // namespace Ketra
