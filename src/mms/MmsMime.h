// What a part of a message is called in a mail.
#pragma once
#include "mms/MmsMessagePart.h"

#include <string>

namespace mms {

// The content type with its parameters: the boundary of a DRM message, UTF-8 for the texts that a slide has
// made. A part without a type has octets of any kind.
std::string MimeTypeOf(const CMmsMessagePart& part);

}  // namespace mms
