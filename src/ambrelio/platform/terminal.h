// The standard streams: whether somebody watches, and what they carry.
#pragma once

namespace ambrelio {

// Whether the process's standard output (standard error) is a terminal.
bool OutputIsTerminal();
bool ErrorOutputIsTerminal();

// From here on the standard streams of C++ carry bytes as they are given, and a terminal takes them
// for UTF-8. What is said in a process that was started without an output is dropped, and no error.
// To be called before their first use, but after what their synchronisation is decided by.
void UsePlainUtf8Streams();

}  // namespace ambrelio
