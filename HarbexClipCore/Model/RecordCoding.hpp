#pragma once

// Both codings of a persisted record from one list of its keys. A record type offers, in namespace
// harbex (found by argument-dependent lookup; not in an unnamed namespace, which lookup skips):
//   template <class Writer> Writer& writeFields(Writer&, const Record&);
// listing its keys in declaration order with field() and optional(), which JsonObjectWriter and
// JsonTextWriter both offer, so the value tree and the text cannot drift apart.

#include "HarbexClipCore/Support/Json.hpp"
#include "HarbexClipCore/Support/JsonTextWriter.hpp"

namespace harbex {

template <class Record>
JsonValue encodeRecord(const Record& record) {
    JsonObjectWriter writer;
    return writeFields(writer, record).take();
}

template <class Record>
void writeRecord(JsonTextWriter& writer, const Record& record) {
    writer.beginObject();
    writeFields(writer, record);
    writer.endObject();
}

}  // namespace harbex
