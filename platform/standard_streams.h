// The standard streams carry bytes as they are: the texts Velkor prints already hold the line breaks they
// need (the linked textual IFF ends its lines in CR LF), so no translation may add a second CR.
#pragma once

namespace velkor {

// Switches stdin, stdout and stderr to binary mode where the C runtime translates line breaks (Windows);
// elsewhere nothing is to be done.
void UseBinaryStandardStreams();

} // namespace velkor
