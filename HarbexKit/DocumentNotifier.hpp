#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "HarbexClipCore/Support/Observable.hpp"

namespace harbex {

// Tells the family's other applications that a shared document changed, and hears them do so.
// On Linux a D-Bus session-bus signal; in tests an in-process bus. Thread: the owner's (main)
// thread; observers are called on it.
class DocumentNotifier {
public:
    virtual ~DocumentNotifier() = default;

    // Announces that the document `name` was written. Delivery is best effort: a missing bus
    // loses the announcement, never the document.
    virtual void post(std::string_view name) = 0;

    // Calls `observer` each time another participant posts `name`. Our own posts are never
    // delivered back to us. The observer runs until the subscription ends.
    [[nodiscard]] virtual Subscription subscribe(std::string name,
                                                 std::function<void()> observer) = 0;
};

}  // namespace harbex
