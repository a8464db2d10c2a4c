#include "records/TRecordDirectory.h"

namespace Vantor {

TRecordDirectory::TRecordDirectory() : fLink(std::make_shared<TRecordDirectory*>(this)) {}

TRecordDirectory::~TRecordDirectory() { *fLink = nullptr; }

}  // namespace Vantor
