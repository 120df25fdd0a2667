// A byte buffer with one cursor for reading and writing.
#pragma once

#include <base/CBuffer.h>
#include <base/Export.h>

namespace Ketra {

// The cursor starts at 0. When the buffer is made shorter than the cursor, the cursor stands at its end.
class KETRA_QT_API CData : public CBuffer {
public:
    CData();
    explicit CData(const CBuffer&);
    CData(const void* data, unsigned int size);
    CData(const CData&); // with the cursor
    CData& operator=(const CData&);
    ~CData() override;

    int get(void* dst, unsigned int n);       // 0; -1 and nothing moved when fewer than n bytes remain
    int put(const void* src, unsigned int n); // 0; overwrites, grows past the end; -1 as in CBuffer
    unsigned int getPosition() const;
    int setPosition(unsigned int position); // 0; -1 and unmoved past the end
    unsigned int getRemaining() const;

private:
    unsigned int position_ = 0;
};

} // namespace Ketra
