#pragma once

#include "datacom/Export.h"

#include <cstdint>
#include <string>

namespace datacom {

/// Tag-text search helpers on which every message and record text is parsed.
/// They are plain substring searches, not an XML parser: no nesting count, no
/// escaping, first match wins. Positions are byte indices; -1 means not found.
/// Parsers of the whole system rely on these exact rules; do not make them smarter.

/// The value of the first `name="..."` at or after `from`. The key is a plain
/// substring: "ID" also matches the tail of "RowID". Returns the index of the
/// closing quote, or -1 (value untouched) when the key or the closing quote is missing.
DATACOM_API int getPropertyValue(const std::string& text, int from, const std::string& name, std::string& value);

/// The first element `<tag ...>...</tag>`, `<tag>...</tag>` or self-closed
/// `<tag .../>` at or after `from`, through its closing tag. The element ends
/// at the first closing tag of its name. Returns the index just past the
/// element (the natural `from` for the next sibling), or -1.
DATACOM_API int getSegment(const std::string& text, int from, const std::string& tag, std::string& segment);

/// The characters between the first `start` delimiter at or after `from` and
/// the next `end` delimiter. A delimiter that is " ", "\t" or "\n" matches any
/// of the three. Returns the index of the end delimiter, or -1.
DATACOM_API int getToken(const std::string& text, int from, const std::string& start, const std::string& end,
                         std::string& token);

/// Appends `value` as the text between the quotes of an attribute. The readers
/// above take '"', '<' and '>' as delimiters and know no escaping, so a value
/// holding one would end early or open an element of its own: each is
/// replaced, '"' by '\'', '<' by '(' and '>' by ')'. Replaced rather than
/// refused, so that a record with a user's text (a channel name, a traceroute
/// line) still goes out with exactly its own parameters. The first replacement
/// in the process is logged with its value; later ones are silent, so that a
/// repeating source cannot flood the log. Every record text is built through it.
DATACOM_API void appendTagValue(std::string& out, const std::string& value);

/// True when `value` can stand between the quotes of an attribute as it is:
/// it holds none of '"', '<', '>'. The writers of data items (the "GET"/"SET"
/// requests and their replies, the data set files) refuse any other value with
/// FC_BAD_VALUE instead of replacing characters: a value read back must be the
/// value stored.
DATACOM_API bool fitsTagValue(const std::string& value);

/// Leading-number conversions used for attribute values: junk after the digits
/// is ignored, a non-number gives 0, out-of-range values saturate (the same
/// result on 32-bit and 64-bit targets).
DATACOM_API int32_t tagToInt(const std::string& text);
DATACOM_API uint32_t tagToHex(const std::string& text);

}  // namespace datacom
