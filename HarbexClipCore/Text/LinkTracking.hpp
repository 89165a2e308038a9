#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace harbex {

// Whether a query parameter name is a known tracker: the utm_ family (and Matomo's mtm_ and
// HubSpot's hsa_ families) and the click identifiers of the common ad, mail and social platforms.
// Case-insensitive. Thread: any.
bool isTrackingParameter(std::string_view name);

// The http or https link without its tracking parameters, or nothing when the text (trimmed of
// white space) is not a single such link. A link without trackers comes back exactly as written.
// Otherwise the link is written again from its parts: the fragment and the other parameters stay
// as written and in order, empty pieces ("&&") go, a query left empty loses its "?", and the
// scheme and host are lower-cased as a browser does. Thread: any.
std::optional<std::string> linkWithoutTracking(std::string_view text);

}  // namespace harbex
