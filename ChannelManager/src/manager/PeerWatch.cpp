// The peer watch's rules for one peer: a new socket acted on once settled,
// subscribed to again with a doubling back-off, its return work due once.
#include "manager/PeerWatch.h"

#include <algorithm>

PeerWatch::PeerWatch(const SocketIdentity& identity, bool subscribed, Clock::time_point now)
    : acted(identity), seen(identity), isSubscribed(subscribed), nextTry(now) {}

PeerWatch::Change PeerWatch::look(const SocketIdentity& now, Clock::time_point at) {
    const bool settled = now == seen;
    seen = now;
    if (!settled || now == acted)
        return Change::None;
    const bool wasThere = acted.present();
    acted = now;
    // A socket that went away is only noted: there is nobody to subscribe to.
    if (!now.present())
        return Change::None;
    // Whatever it was told before went with the process before it.
    isSubscribed = false;
    returnDue = true;
    backoff = 0;
    nextTry = at;
    return wasThere ? Change::Restarted : Change::Appeared;
}

bool PeerWatch::subscribeDue(Clock::time_point at) const {
    // A socket not yet settled is left alone: its process may not serve yet,
    // and it is subscribed to once it is acted on.
    return !isSubscribed && seen.present() && seen == acted && at >= nextTry;
}

void PeerWatch::subscribeAnswered(bool acknowledged, Clock::time_point at) {
    if (acknowledged) {
        isSubscribed = true;
        backoff = 0;
        return;
    }
    backoff = std::min(MAX_BACKOFF_SEC, backoff == 0 ? 1 : 2 * backoff);
    nextTry = at + std::chrono::seconds(backoff);
}

bool PeerWatch::takeReturnWork() {
    if (!isSubscribed || !returnDue)
        return false;
    returnDue = false;
    return true;
}
