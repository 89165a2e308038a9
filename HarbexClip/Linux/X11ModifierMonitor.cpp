#include "HarbexClip/Linux/X11ModifierMonitor.hpp"

#include <xcb/xinput.h>

#include <algorithm>
#include <string_view>

namespace harbex {
namespace {

using Held = ClipModifierTap::Held;

// Linux keys for the shortcut modifiers: Ctrl is ⌘, Super is ⌃, Alt is ⌥.
struct ModifierKey {
    xcb_keysym_t keysym;
    int bit;
};
constexpr ModifierKey kModifierKeys[]{
    {0xffe3, Held::kCommand}, {0xffe4, Held::kCommand},  // Control_L, Control_R
    {0xffe1, Held::kShift},   {0xffe2, Held::kShift},    // Shift_L, Shift_R
    {0xffe9, Held::kOption},  {0xffea, Held::kOption},   // Alt_L, Alt_R
    {0xfe03, Held::kOption},                             // ISO_Level3_Shift (AltGr)
    {0xffeb, Held::kControl}, {0xffec, Held::kControl},  // Super_L, Super_R
};

}  // namespace

X11ModifierMonitor::X11ModifierMonitor(X11Connection& connection, XTestInput xtest)
    : connection_(connection), xtest_(xtest), keyboard_(connection) {}

X11ModifierMonitor::~X11ModifierMonitor() { remove(); }

bool X11ModifierMonitor::isAvailable() const { return connection_.xinputOpcode().has_value(); }

void X11ModifierMonitor::readDevices() {
    xtestDevices_.clear();
    xcb_connection_t* c = connection_.raw();
    XcbReply<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        c, xcb_input_xi_query_device(c, XCB_INPUT_DEVICE_ALL), nullptr));
    if (!reply) return;
    for (auto it = xcb_input_xi_query_device_infos_iterator(reply.get()); it.rem;
         xcb_input_xi_device_info_next(&it)) {
        const std::string_view name(xcb_input_xi_device_info_name(it.data),
                                    xcb_input_xi_device_info_name_length(it.data));
        // "Virtual core XTEST keyboard", "Virtual core XTEST pointer".
        if (name.find("XTEST") != std::string_view::npos)
            xtestDevices_.push_back(it.data->deviceid);
    }
}

void X11ModifierMonitor::readModifierKeys() {
    keyboard_.refresh();
    modifierKeys_.clear();
    for (const ModifierKey& key : kModifierKeys) {
        for (xcb_keycode_t code : keyboard_.keycodes(key.keysym))
            modifierKeys_.emplace_back(code, key.bit);
    }
}

void X11ModifierMonitor::select(bool on) {
    struct {
        xcb_input_event_mask_t header;
        std::uint32_t mask;
    } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
           on ? std::uint32_t(XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS |
                              XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE |
                              XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS)
              : 0u};
    xcb_input_xi_select_events(connection_.raw(), connection_.root(), 1, &mask.header);
    connection_.flush();
}

void X11ModifierMonitor::install(ModifiersChanged onModifiers, OtherInput onOtherInput) {
    remove();
    if (!isAvailable()) return;
    onModifiers_ = std::move(onModifiers);
    onOtherInput_ = std::move(onOtherInput);
    readDevices();
    readModifierKeys();
    down_.clear();
    handlerID_ = connection_.addHandler(
        [this](const xcb_generic_event_t& event) { return handleEvent(event); },
        DuringWaits::deferred);
    select(true);
}

void X11ModifierMonitor::remove() {
    if (handlerID_ == 0) return;
    select(false);
    connection_.removeHandler(handlerID_);
    handlerID_ = 0;
    onModifiers_ = nullptr;
    onOtherInput_ = nullptr;
}

Held X11ModifierMonitor::held() const {
    int bits = 0;
    for (auto [code, bit] : modifierKeys_) {
        if (std::ranges::find(down_, code) != down_.end()) bits |= bit;
    }
    return Held(bits);
}

bool X11ModifierMonitor::handleEvent(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) == XCB_MAPPING_NOTIFY) {
        readModifierKeys();
        return false;
    }
    if ((event.response_type & 0x7f) != XCB_GE_GENERIC) return false;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != connection_.xinputOpcode()) return false;
    const std::uint16_t type = generic.event_type;
    if (type != XCB_INPUT_RAW_KEY_PRESS && type != XCB_INPUT_RAW_KEY_RELEASE &&
        type != XCB_INPUT_RAW_BUTTON_PRESS)
        return false;
    const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
    if (xtest_ == XTestInput::ignored &&
        (std::ranges::find(xtestDevices_, raw.sourceid) != xtestDevices_.end() ||
         std::ranges::find(xtestDevices_, raw.deviceid) != xtestDevices_.end()))
        return true;
    if (type == XCB_INPUT_RAW_BUTTON_PRESS) {
        if (onOtherInput_) onOtherInput_();
        return true;
    }
    const auto code = static_cast<xcb_keycode_t>(raw.detail);
    const bool isModifier = std::ranges::any_of(
        modifierKeys_, [code](const auto& entry) { return entry.first == code; });
    if (!isModifier) {
        if (type == XCB_INPUT_RAW_KEY_PRESS && onOtherInput_) onOtherInput_();
        return true;
    }
    const Held before = held();
    if (type == XCB_INPUT_RAW_KEY_PRESS) {
        if (std::ranges::find(down_, code) == down_.end()) down_.push_back(code);
    } else {
        std::erase(down_, code);
    }
    const Held now = held();
    if (now != before && onModifiers_) onModifiers_(now, raw.time / 1000.0);
    return true;
}

}  // namespace harbex
