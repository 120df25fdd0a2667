#include <base/CException.h>

namespace Ketra {

struct CException::Details {
    CString name;
    int line;
    CString file;
    CString function;
    CString message;
};

CException::CException(const char* className, int line, const char* file, const char* function,
                       const CString& message)
    : details_(std::make_shared<const Details>(Details{className, line, file, function, message})) {}

CException::CException(const CException&) = default;
CException& CException::operator=(const CException&) = default;
CException::~CException() = default;

const CString& CException::getName() const { return details_->name; }
int CException::getLine() const { return details_->line; }
const CString& CException::getFile() const { return details_->file; }
const CString& CException::getFunction() const { return details_->function; }
const CString& CException::getMessage() const { return details_->message; }
const char* CException::what() const noexcept { return details_->message.c_str(); }

} // namespace Ketra
