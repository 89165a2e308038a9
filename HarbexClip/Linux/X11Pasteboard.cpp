#include "HarbexClip/Linux/X11Pasteboard.hpp"

#include <xcb/xfixes.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "HarbexClip/Linux/X11SelectionData.hpp"
#include "HarbexClipCore/Pasteboard/FileUrls.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {
namespace {

using Clock = X11Connection::Clock;

struct ImageTarget {
    std::string_view role;
    std::string_view mime;
};
constexpr std::array<ImageTarget, 4> kImageTargets{{
    {kPngType, "image/png"},
    {kTiffType, "image/tiff"},
    {kJpegType, "image/jpeg"},
    {kHeicType, "image/heic"},
}};

constexpr std::array<std::string_view, 9> kMetaTargets{
    "TARGETS",          "TIMESTAMP",       "MULTIPLE",    "SAVE_TARGETS", "DELETE",
    "INSERT_SELECTION", "INSERT_PROPERTY", "_NET_WM_PID", "_NET_WM_NAME"};

constexpr std::array<std::string_view, 5> kTextTargets{"UTF8_STRING", "text/plain;charset=utf-8",
                                                       "STRING", "TEXT", "text/plain"};

template <typename Event>
const Event& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event);
}

}  // namespace

std::vector<std::string> X11Pasteboard::rolesForTarget(std::string_view target) {
    if (std::ranges::find(kMetaTargets, target) != kMetaTargets.end()) return {};
    if (std::ranges::find(kTextTargets, target) != kTextTargets.end())
        return {std::string(kPlainTextType)};
    if (target == "text/html") return {std::string(kHtmlType)};
    if (target == "text/rtf" || target == "text/richtext") return {std::string(kRtfType)};
    if (target == "text/uri-list" || target == "x-special/gnome-copied-files")
        return {std::string(kFileUrlType)};
    if (target == "text/x-moz-url") return {std::string(kUrlType), std::string(kUrlTitleType)};
    for (const ImageTarget& image : kImageTargets) {
        if (image.mime == target) return {std::string(image.role)};
    }
    return {std::string(target)};
}

X11Pasteboard::X11Pasteboard(X11Connection& connection) : connection_(connection) {
    clipboard_ = connection_.atom("CLIPBOARD");
    xcb_xfixes_select_selection_input(connection_.raw(), connection_.window(), clipboard_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    manager_ = connection_.atom("CLIPBOARD_MANAGER");
    xcb_xfixes_select_selection_input(connection_.raw(), connection_.window(), manager_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    // Serving and counting never call out of this object, so they may run inside a wait (which
    // is what lets us read a selection we own ourselves).
    handlerID_ = connection_.addHandler(
        [this](const xcb_generic_event_t& event) { return handleEvent(event); },
        DuringWaits::handled);
    claimManager();
    connection_.flush();
}

X11Pasteboard::~X11Pasteboard() {
    connection_.removeHandler(handlerID_);
    if (owning_) xcb_set_selection_owner(connection_.raw(), XCB_NONE, clipboard_, ownTime_);
    if (owningManager_) xcb_set_selection_owner(connection_.raw(), XCB_NONE, manager_, ownTime_);
    connection_.flush();
}

std::int64_t X11Pasteboard::changeCount() {
    connection_.dispatch();
    dropIdleTransfers();
    // Both wait for other clients, which event handlers must not do.
    if (managerFree_) claimManager();
    if (pendingSave_) {
        const xcb_selection_request_event_t request = *pendingSave_;
        pendingSave_.reset();
        storeForQuittingOwner(request);
    }
    return changeCount_;
}

ClipKeepOnQuit X11Pasteboard::keepOnQuit() {
    return owningManager_ || managerFree_ ? ClipKeepOnQuit::ours : ClipKeepOnQuit::anotherManager;
}

void X11Pasteboard::claimManager() {
    managerFree_ = false;
    xcb_connection_t* c = connection_.raw();
    XcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, manager_), nullptr));
    // Another manager already keeps copies of quitting applications: two would fight over
    // every copy, so the duty stays with the one that came first.
    if (!owner || owner->owner != XCB_NONE) return;
    const xcb_timestamp_t time = connection_.serverTime();
    xcb_set_selection_owner(c, connection_.window(), manager_, time);
    XcbReply<xcb_get_selection_owner_reply_t> now(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, manager_), nullptr));
    owningManager_ = now && now->owner == connection_.window();
}

// MARK: Reading

xcb_atom_t X11Pasteboard::nextProperty() {
    // A fresh property per request, so a reply that arrives after its request was abandoned
    // cannot be taken for the next one.
    static constexpr std::array<std::string_view, 8> kPool{
        "_HARBEX_SELECTION_0", "_HARBEX_SELECTION_1", "_HARBEX_SELECTION_2", "_HARBEX_SELECTION_3",
        "_HARBEX_SELECTION_4", "_HARBEX_SELECTION_5", "_HARBEX_SELECTION_6", "_HARBEX_SELECTION_7"};
    const xcb_atom_t property = connection_.atom(kPool[nextProperty_]);
    nextProperty_ = (nextProperty_ + 1) % kPool.size();
    return property;
}

std::optional<Bytes> X11Pasteboard::readProperty(xcb_atom_t property, bool& incremental,
                                                 xcb_atom_t* type) {
    xcb_connection_t* c = connection_.raw();
    XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(c,
                               xcb_get_property(c, 1, connection_.window(), property,
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, UINT32_MAX / 4),
                               nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
    incremental = reply->type == connection_.atom("INCR");
    if (type && !incremental) *type = reply->type;
    const auto* data = static_cast<const std::uint8_t*>(xcb_get_property_value(reply.get()));
    const int length = xcb_get_property_value_length(reply.get());
    return Bytes(data, data + std::max(length, 0));
}

std::optional<Bytes> X11Pasteboard::request(xcb_atom_t target, xcb_atom_t* type, std::size_t limit,
                                            bool* overLimit) {
    if (unresponsiveCount_ == changeCount_) return std::nullopt;
    xcb_connection_t* c = connection_.raw();
    const xcb_window_t window = connection_.window();
    const xcb_atom_t property = nextProperty();
    xcb_delete_property(c, window, property);
    xcb_convert_selection(c, window, clipboard_, target, property, XCB_CURRENT_TIME);
    XcbEvent notify = connection_.waitFor(
        [&](const xcb_generic_event_t& event) {
            if ((event.response_type & 0x7f) != XCB_SELECTION_NOTIFY) return false;
            const auto& reply = as<xcb_selection_notify_event_t>(event);
            return reply.requestor == window && reply.selection == clipboard_ &&
                   (reply.property == property ||
                    (reply.property == XCB_ATOM_NONE && reply.target == target));
        },
        Clock::now() + kRequestTimeout);
    if (!notify) {
        unresponsiveCount_ = changeCount_;
        return std::nullopt;
    }
    if (as<xcb_selection_notify_event_t>(*notify).property == XCB_ATOM_NONE) return std::nullopt;

    bool incremental = false;
    auto first = readProperty(property, incremental, type);
    const auto tooLarge = [&] {
        // Deleting without reading on ends our side; the owner gives up on its own time-out.
        xcb_delete_property(c, window, property);
        if (overLimit) *overLimit = true;
        return std::nullopt;
    };
    if (first && !incremental && first->size() > limit) return tooLarge();
    if (!first || !incremental) return first;
    // A copy announced as too large is not fetched at all.
    x11data::IncrementalReply reply(*first, limit);
    if (reply.state() == x11data::IncrementalReply::Step::tooLarge) return tooLarge();

    // INCR: deleting the property (done by the read) asks for each next chunk; an empty chunk
    // ends the transfer.
    for (;;) {
        XcbEvent chunk = connection_.waitFor(
            [&](const xcb_generic_event_t& event) {
                if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
                const auto& change = as<xcb_property_notify_event_t>(event);
                return change.window == window && change.atom == property &&
                       change.state == XCB_PROPERTY_NEW_VALUE;
            },
            Clock::now() + kRequestTimeout);
        if (!chunk) {
            unresponsiveCount_ = changeCount_;
            return std::nullopt;
        }
        bool ignored = false;
        auto part = readProperty(property, ignored, type);
        if (!part) return std::nullopt;
        switch (reply.add(*part)) {
            case x11data::IncrementalReply::Step::more: break;
            case x11data::IncrementalReply::Step::done: return reply.take();
            case x11data::IncrementalReply::Step::tooLarge: return tooLarge();
        }
    }
}

const std::vector<X11Pasteboard::Target>& X11Pasteboard::targets() {
    changeCount();
    if (targetsCount_ == changeCount_) return targets_;
    targets_.clear();
    targetsCount_ = changeCount_;
    auto reply = request(connection_.atom("TARGETS"));
    if (!reply) return targets_;
    const auto atoms = x11data::targetAtoms(*reply);
    if (!atoms) return targets_;
    const std::vector<xcb_atom_t> unique(atoms->begin(), atoms->end());
    const auto names = connection_.atomNames(unique);
    for (std::size_t i = 0; i < unique.size(); ++i) {
        if (!names[i].empty()) targets_.push_back(Target{unique[i], names[i]});
    }
    return targets_;
}

const X11Pasteboard::Target* X11Pasteboard::findTarget(std::string_view name) {
    const auto& list = targets();
    auto it = std::ranges::find(list, name, &Target::name);
    return it == list.end() ? nullptr : &*it;
}

std::optional<Bytes> X11Pasteboard::readFirst(std::initializer_list<std::string_view> names,
                                              std::string_view* which, std::size_t limit,
                                              bool* overLimit) {
    // The first declared name is the one read; when its owner gives nothing the next declared
    // one is tried.
    for (std::string_view name : names) {
        const Target* target = findTarget(name);
        if (!target) continue;
        if (auto data = request(target->atom, nullptr, limit, overLimit)) {
            if (which) *which = name;
            return data;
        }
        if (overLimit && *overLimit) return std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> X11Pasteboard::readString(std::string_view name) {
    auto data = readFirst({name});
    if (!data) return std::nullopt;
    return stringOf(*data);
}

std::vector<std::string> X11Pasteboard::types() {
    std::vector<std::string> result;
    for (const Target& target : targets()) {
        for (auto& role : rolesForTarget(target.name)) {
            if (std::ranges::find(result, role) == result.end()) result.push_back(std::move(role));
        }
    }
    return result;
}

std::optional<std::string> X11Pasteboard::markerValue(std::string_view type) {
    return readString(type);
}

std::optional<PasteboardSnapshot> X11Pasteboard::snapshot() {
    PasteboardSnapshot snapshot;
    snapshot.types = types();
    if (snapshot.types.empty()) return std::nullopt;

    snapshot.sourceID = readString(kSourceType);
    snapshot.passwordManagerHint = readString(kPasswordManagerHintType);
    std::string_view filesTarget;
    if (auto list = readFirst({"text/uri-list", "x-special/gnome-copied-files"}, &filesTarget))
        snapshot.fileURLs = x11data::fileUrls(filesTarget, *list);
    std::string_view textTarget;
    if (auto text = readFirst({"UTF8_STRING", "text/plain;charset=utf-8", "STRING", "text/plain"},
                              &textTarget, textLimit(), &snapshot.textOverLimit)) {
        snapshot.string = textTarget == "STRING" ? x11data::latin1ToUtf8(*text) : stringOf(*text);
    }
    // Plain text over the limit refuses the copy: nothing else of it is worth reading.
    if (snapshot.textOverLimit) return snapshot;
    bool richOver = false;
    snapshot.rtf = readFirst({"text/rtf", "text/richtext"}, nullptr, textLimit(), &richOver);
    if (auto html = readFirst({"text/html"}, nullptr, textLimit(), &richOver)) {
        snapshot.html = bytesOf(x11data::decodeMaybeUtf16(*html, false));
    }
    if (!snapshot.string) {
        if (auto mozUrl = readFirst({"text/x-moz-url"})) {
            auto [url, title] = x11data::mozUrl(*mozUrl);
            snapshot.url = std::move(url);
            snapshot.urlTitle = std::move(title);
        }
    }
    if (snapshot.fileURLs.empty() && !snapshot.string) {
        for (const ImageTarget& image : kImageTargets) {
            const Target* target = findTarget(image.mime);
            if (!target) continue;
            if (auto data = request(target->atom))
                snapshot.image = ClipImagePayload{std::string(image.role), std::move(*data)};
            break;
        }
    }
    return snapshot;
}

// MARK: Writing

void X11Pasteboard::serve(std::string_view target, std::string_view type, Bytes data) {
    const xcb_atom_t targetAtom = connection_.atom(target);
    if (targetAtom == XCB_ATOM_NONE) return;
    std::erase_if(served_, [&](const Served& served) { return served.target == targetAtom; });
    const xcb_atom_t typeAtom =
        type == "STRING" ? xcb_atom_t(XCB_ATOM_STRING) : connection_.atom(type);
    served_.push_back(Served{targetAtom, typeAtom, std::make_shared<const Bytes>(std::move(data))});
}

std::int64_t X11Pasteboard::write(const ClipPayload& payload,
                                  std::optional<std::string_view> sourceID) {
    changeCount();
    served_.clear();
    if (!payload.fileURLs.empty()) {
        serve("text/uri-list", "text/uri-list", bytesOf(uriListFromUrls(payload.fileURLs)));
        std::string copied = "copy";
        for (const auto& url : payload.fileURLs) copied += "\n" + url;
        serve("x-special/gnome-copied-files", "x-special/gnome-copied-files", bytesOf(copied));
    } else if (payload.url && parsesAsUrl(*payload.url)) {
        serve("text/x-moz-url", "text/x-moz-url", bytesOf(*payload.url));
    }
    if (payload.image) {
        for (const ImageTarget& image : kImageTargets) {
            if (image.role == payload.image->type)
                serve(image.mime, image.mime, payload.image->data);
        }
    }
    if (payload.text) {
        const Bytes utf8 = bytesOf(*payload.text);
        serve("UTF8_STRING", "UTF8_STRING", utf8);
        serve("text/plain;charset=utf-8", "text/plain;charset=utf-8", utf8);
        serve("text/plain", "text/plain", utf8);
        serve("TEXT", "UTF8_STRING", utf8);
        serve("STRING", "STRING", x11data::utf8ToLatin1(*payload.text));
    }
    if (payload.rtf) serve("text/rtf", "text/rtf", *payload.rtf);
    if (payload.html) serve("text/html", "text/html", *payload.html);
    serve(kOwnWriteType, kOwnWriteType, {});
    if (payload.concealed) {
        serve(kConcealedType, kConcealedType, {});
        serve(kPasswordManagerHintType, kPasswordManagerHintType,
              bytesOf(kPasswordManagerHintSecret));
    }
    if (sourceID) serve(kSourceType, kSourceType, bytesOf(*sourceID));

    // ICCCM wants a real timestamp for ownership; CurrentTime would let stale requests through.
    if (takeOwnership(connection_.serverTime())) {
        // Counted here so the caller gets the new count at once; the matching XFixes
        // notification is then skipped.
        ++changeCount_;
        ownerLeft_ = false;
    } else {
        served_.clear();
    }
    return changeCount_;
}

bool X11Pasteboard::takeOwnership(xcb_timestamp_t time) {
    xcb_connection_t* c = connection_.raw();
    xcb_set_selection_owner(c, connection_.window(), clipboard_, time);
    XcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, clipboard_), nullptr));
    owning_ = owner && owner->owner == connection_.window();
    if (owning_) {
        ownTime_ = time;
        ownTakeovers_.push_back(time);
    }
    return owning_;
}

void X11Pasteboard::storeForQuittingOwner(const xcb_selection_request_event_t& save) {
    const bool keeps = owningManager_ && !owning_ && judge_ && judge_(changeCount_);
    if (!keeps) {
        notify(save, XCB_ATOM_NONE);
        return;
    }
    // The targets the owner listed; GTK lists none, meaning all it offers.
    std::vector<xcb_atom_t> wanted;
    if (save.property != XCB_ATOM_NONE)
        wanted = connection_.property32(save.requestor, save.property, XCB_ATOM_ATOM);
    if (wanted.empty()) {
        for (const Target& target : targets()) wanted.push_back(target.atom);
    }
    std::vector<xcb_atom_t> skipped{connection_.atom(kOwnWriteType)};
    for (std::string_view meta : kMetaTargets) skipped.push_back(connection_.atom(meta));
    std::vector<Served> kept;
    std::size_t total = 0;
    for (xcb_atom_t target : wanted) {
        if (std::ranges::find(skipped, target) != skipped.end() ||
            std::ranges::find(kept, target, &Served::target) != kept.end())
            continue;
        xcb_atom_t type = target;
        auto data = request(target, &type);
        if (!data) continue;
        total += data->size();
        if (total > kMaxReadBytes) break;
        kept.push_back(Served{target, type, std::make_shared<const Bytes>(std::move(*data))});
    }
    if (kept.empty()) {
        notify(save, XCB_ATOM_NONE);
        return;
    }
    served_ = std::move(kept);
    serve(kOwnWriteType, kOwnWriteType, {});
    // The contents stay what they were, so this is no change for the count.
    if (!takeOwnership(connection_.serverTime())) served_.clear();
    notify(save, owning_ ? (save.property != XCB_ATOM_NONE ? save.property : save.target)
                         : xcb_atom_t(XCB_ATOM_NONE));
}

// MARK: Events

bool X11Pasteboard::handleEvent(const xcb_generic_event_t& event) {
    const std::uint8_t type = event.response_type & 0x7f;
    if (type == connection_.xfixesFirstEvent() + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto& change = as<xcb_xfixes_selection_notify_event_t>(event);
        if (change.selection == manager_) {
            if (change.owner == XCB_NONE) {
                managerFree_ = true;
            } else if (change.owner != connection_.window()) {
                owningManager_ = false;
            }
            return true;
        }
        if (change.selection != clipboard_) return false;
        handleOwnerChange(event);
        return true;
    }
    switch (type) {
        case XCB_SELECTION_REQUEST: {
            const auto& request = as<xcb_selection_request_event_t>(event);
            if (request.owner == connection_.window() && request.selection == manager_) {
                if (request.target != connection_.atom("SAVE_TARGETS")) {
                    notify(request, XCB_ATOM_NONE);
                } else {
                    if (pendingSave_) notify(*pendingSave_, XCB_ATOM_NONE);
                    pendingSave_ = request;
                }
                return true;
            }
            if (request.owner != connection_.window() || request.selection != clipboard_)
                return false;
            handleRequest(request);
            return true;
        }
        case XCB_SELECTION_CLEAR: {
            const auto& clear = as<xcb_selection_clear_event_t>(event);
            if (clear.owner == connection_.window() && clear.selection == manager_) {
                owningManager_ = false;
                return true;
            }
            if (clear.owner != connection_.window() || clear.selection != clipboard_) return false;
            owning_ = false;
            served_.clear();
            return true;
        }
        case XCB_PROPERTY_NOTIFY: {
            const auto& change = as<xcb_property_notify_event_t>(event);
            if (change.state != XCB_PROPERTY_DELETE) return false;
            const bool ours = std::ranges::any_of(transfers_, [&](const Transfer& transfer) {
                return transfer.requestor == change.window && transfer.property == change.atom;
            });
            if (!ours) return false;
            continueTransfer(change.window, change.atom);
            return true;
        }
        default: return false;
    }
}

void X11Pasteboard::handleOwnerChange(const xcb_generic_event_t& event) {
    const auto& notify = as<xcb_xfixes_selection_notify_event_t>(event);
    // Whatever the subtype: a destroyed window, a closed client, or an owner set to None all
    // leave the clipboard empty.
    ownerLeft_ = notify.owner == XCB_NONE;
    if (notify.owner == connection_.window()) {
        auto it = std::ranges::find(ownTakeovers_, notify.selection_timestamp);
        if (it != ownTakeovers_.end()) {
            ownTakeovers_.erase(ownTakeovers_.begin(), it + 1);
            return;
        }
    }
    ++changeCount_;
}

void X11Pasteboard::handleRequest(const xcb_selection_request_event_t& request) {
    xcb_connection_t* c = connection_.raw();
    // Obsolete clients name no property: the target doubles as one.
    const xcb_atom_t property =
        request.property == XCB_ATOM_NONE ? request.target : request.property;
    bool served = false;
    const bool current = owning_ && (request.time == XCB_CURRENT_TIME || request.time >= ownTime_);
    if (current && request.target == connection_.atom("MULTIPLE") &&
        request.property != XCB_ATOM_NONE) {
        const xcb_atom_t pairType = connection_.atom("ATOM_PAIR");
        auto pairs = connection_.property32(request.requestor, property, pairType);
        for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
            if (!serveTarget(request.requestor, pairs[i], pairs[i + 1]))
                pairs[i + 1] = XCB_ATOM_NONE;
        }
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor, property, pairType, 32,
                            static_cast<std::uint32_t>(pairs.size()), pairs.data());
        served = true;
    } else if (current) {
        served = serveTarget(request.requestor, request.target, property);
    }
    notify(request, served ? property : xcb_atom_t(XCB_ATOM_NONE));
}

void X11Pasteboard::notify(const xcb_selection_request_event_t& request, xcb_atom_t property) {
    xcb_selection_notify_event_t reply{};
    reply.response_type = XCB_SELECTION_NOTIFY;
    reply.time = request.time;
    reply.requestor = request.requestor;
    reply.selection = request.selection;
    reply.target = request.target;
    reply.property = property;
    xcb_send_event(connection_.raw(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&reply));
    connection_.flush();
}

bool X11Pasteboard::serveTarget(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    xcb_connection_t* c = connection_.raw();
    if (target == connection_.atom("TARGETS")) {
        std::vector<xcb_atom_t> atoms{connection_.atom("TARGETS"), connection_.atom("TIMESTAMP"),
                                      connection_.atom("MULTIPLE")};
        for (const Served& served : served_) atoms.push_back(served.target);
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_ATOM, 32,
                            static_cast<std::uint32_t>(atoms.size()), atoms.data());
        return true;
    }
    if (target == connection_.atom("TIMESTAMP")) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_INTEGER, 32, 1,
                            &ownTime_);
        return true;
    }
    auto it = std::ranges::find(served_, target, &Served::target);
    if (it == served_.end()) return false;
    // Stay well under the server's request limit as well as our own chunk size.
    const std::size_t maxRequest = std::size_t(xcb_get_maximum_request_length(c)) * 4;
    const std::size_t chunk = std::min(kMaxChunk, maxRequest > 1024 ? maxRequest - 1024 : 0);
    if (it->data->size() <= chunk) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, it->type, 8,
                            static_cast<std::uint32_t>(it->data->size()), it->data->data());
        return true;
    }
    // INCR: announce the size, then send a chunk each time the requestor deletes the property.
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(c, requestor, XCB_CW_EVENT_MASK, &mask);
    const auto size =
        static_cast<std::uint32_t>(std::min<std::size_t>(it->data->size(), UINT32_MAX));
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, connection_.atom("INCR"), 32,
                        1, &size);
    std::erase_if(transfers_, [&](const Transfer& transfer) {
        return transfer.requestor == requestor && transfer.property == property;
    });
    transfers_.push_back(Transfer{requestor, property, it->type, it->data, 0, Clock::now()});
    return true;
}

void X11Pasteboard::continueTransfer(xcb_window_t window, xcb_atom_t property) {
    auto it = std::ranges::find_if(transfers_, [&](const Transfer& transfer) {
        return transfer.requestor == window && transfer.property == property;
    });
    if (it == transfers_.end()) return;
    xcb_connection_t* c = connection_.raw();
    const std::size_t maxRequest = std::size_t(xcb_get_maximum_request_length(c)) * 4;
    const std::size_t chunkSize = std::min(kMaxChunk, maxRequest - 1024);
    const std::size_t left = it->data->size() - it->offset;
    const std::size_t size = std::min(chunkSize, left);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, property, it->type, 8,
                        static_cast<std::uint32_t>(size), it->data->data() + it->offset);
    if (size == 0) {
        // The empty chunk just sent ends the transfer.
        if (window != connection_.window()) {
            const std::uint32_t none = XCB_EVENT_MASK_NO_EVENT;
            xcb_change_window_attributes(c, window, XCB_CW_EVENT_MASK, &none);
        }
        transfers_.erase(it);
    } else {
        it->offset += size;
        it->lastActivity = Clock::now();
    }
    connection_.flush();
}

void X11Pasteboard::dropIdleTransfers() {
    const auto now = Clock::now();
    std::erase_if(transfers_, [&](const Transfer& transfer) {
        return now - transfer.lastActivity > kIdleTransferTimeout;
    });
}

}  // namespace harbex
