// Failures of reading binary IFF. Every one carries only its message text.
#pragma once

#include "platform/exception.h"

namespace velkor {

class EIffReader : public Exception {
public:
    using Exception::Exception;
};

// All read slots of the process-wide handle table are taken.
class EIffReader_NoFreeFileHandles : public EIffReader {
public:
    using EIffReader::EIffReader;
};

// A chunk header cut off by the end of the data.
class EIffReader_ErrorInChunk : public EIffReader {
public:
    using EIffReader::EIffReader;
};

// A FORM header cut off by the end of the data.
class EIffReader_ErrorInForm : public EIffReader {
public:
    using EIffReader::EIffReader;
};

} // namespace velkor
