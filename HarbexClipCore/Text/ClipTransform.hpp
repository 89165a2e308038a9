#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// One-step conversions of a text copy, offered by the panel and the library.
enum class ClipTransform {
    uppercase,
    lowercase,
    titleCase,
    sentenceCase,
    trimSpaces,
    sortLines,
    removeDuplicateLines,
    removeLineBreaks,
    straightenQuotes,
    markdownToPlainText,
    stripTrackingFromLink,
    base64Encode,
    base64Decode,
    urlEncode,
    urlDecode,
    formatJSON,
    minify,
    colorAsHex,
    colorAsRGB,
    colorAsHSL,
};

template <>
struct EnumNames<ClipTransform> {
    static constexpr std::array values{
        std::pair{ClipTransform::uppercase, std::string_view("uppercase")},
        std::pair{ClipTransform::lowercase, std::string_view("lowercase")},
        std::pair{ClipTransform::titleCase, std::string_view("titleCase")},
        std::pair{ClipTransform::sentenceCase, std::string_view("sentenceCase")},
        std::pair{ClipTransform::trimSpaces, std::string_view("trimSpaces")},
        std::pair{ClipTransform::sortLines, std::string_view("sortLines")},
        std::pair{ClipTransform::removeDuplicateLines, std::string_view("removeDuplicateLines")},
        std::pair{ClipTransform::removeLineBreaks, std::string_view("removeLineBreaks")},
        std::pair{ClipTransform::straightenQuotes, std::string_view("straightenQuotes")},
        std::pair{ClipTransform::markdownToPlainText, std::string_view("markdownToPlainText")},
        std::pair{ClipTransform::stripTrackingFromLink, std::string_view("stripTrackingFromLink")},
        std::pair{ClipTransform::base64Encode, std::string_view("base64Encode")},
        std::pair{ClipTransform::base64Decode, std::string_view("base64Decode")},
        std::pair{ClipTransform::urlEncode, std::string_view("urlEncode")},
        std::pair{ClipTransform::urlDecode, std::string_view("urlDecode")},
        std::pair{ClipTransform::formatJSON, std::string_view("formatJSON")},
        std::pair{ClipTransform::minify, std::string_view("minify")},
        std::pair{ClipTransform::colorAsHex, std::string_view("colorAsHex")},
        std::pair{ClipTransform::colorAsRGB, std::string_view("colorAsRGB")},
        std::pair{ClipTransform::colorAsHSL, std::string_view("colorAsHSL")},
    };
};

// The headings the panel's action list groups transforms under.
enum class ClipTransformCategory { changeCase, cleanUp, encodeAndFormat };

template <>
struct EnumNames<ClipTransformCategory> {
    static constexpr std::array values{
        std::pair{ClipTransformCategory::changeCase, std::string_view("changeCase")},
        std::pair{ClipTransformCategory::cleanUp, std::string_view("cleanUp")},
        std::pair{ClipTransformCategory::encodeAndFormat, std::string_view("encodeAndFormat")},
    };
};

// "Change case", "Clean up", "Encode and format".
std::string_view categoryTitle(ClipTransformCategory category);

// The label in running text ("Sort lines") and the title-case label of the action list
// ("Sort Lines").
std::string_view transformLabel(ClipTransform transform);
std::string_view transformTitle(ClipTransform transform);
ClipTransformCategory transformCategory(ClipTransform transform);
// The symbol name shown beside the action.
std::string_view transformSymbol(ClipTransform transform);

// Every transform in the order of the action list: by category, case changes led by Title Case.
const std::array<ClipTransform, EnumNames<ClipTransform>::values.size()>& transformsInMenuOrder();

// The transformed text, or nothing when the transform does not apply to this text (it is not
// Base64, JSON, a colour or a link, or a decoded result is not text). Pure: no clock, no
// settings, no locale. Invalid UTF-8 in the input is read as U+FFFD. Thread: any.
//
// The rules the label leaves open:
// - Case changes use full Unicode case mappings ("ß" uppercases to "SS") without a locale. Title
//   Case titlecases each word as the Unicode word break finds it and lowercases the rest of the
//   word. Sentence case lowercases everything, then capitalises the first letter of the text and
//   the first letter after ".", "!" or "?" followed by white space, so "example.com" and "3.5"
//   stay as they are.
// - Lines end at "\n", "\r\n" or "\r". The line transforms write every line break as the first
//   one of the text, and keep a final line break when the text had one.
// - Trim spaces removes spaces and tabs (and other horizontal Unicode spaces) from both ends of
//   each line, drops blank lines at the start and the end, and leaves no final line break; blank
//   lines inside stay, emptied.
// - Sort lines is stable and compares as people expect in a list: case and accents matter only
//   to break ties, and numbers compare by value ("file 2" before "file 10").
// - Remove duplicate lines keeps the first of exactly equal lines; blank lines are separators, not
//   content, and all stay.
// - Remove line breaks turns each run of line breaks, with the spaces and tabs around it, into
//   one space; runs at the start or the end of the text are removed.
// - Strip tracking applies to one http or https link (white space around it is trimmed); it
//   removes the utm_ family and the common click identifiers from the query, drops an emptied
//   "?", and keeps the other parameters and the fragment as written (the scheme and host come
//   back lower-cased). A link without trackers comes back unchanged.
// - Base64 decode accepts line-wrapped text, the URL-safe alphabet and missing padding; the result
//   must be UTF-8 text without control characters other than tab and line breaks.
// - URL encode escapes every byte except the unreserved A–Z a–z 0–9 "-" "." "_" "~"; URL decode
//   requires each "%" to start a two-digit escape, leaves "+" alone and, like Base64 decode,
//   requires the result to be text.
// - Format JSON indents by two spaces; Minify writes no white space. Both keep keys in their order
//   and numbers and strings exactly as written.
// - The colour forms keep alpha: HEX as eight digits, RGB as rgba(), HSL as hsla().
std::optional<std::string> applyTransform(ClipTransform transform, std::string_view text);

}  // namespace harbex
