#include "side/SideActionSupport.h"

#include <limits>

#include "vocab/ChannelVocabulary.h"

namespace side {

Fcodes channelChildren(DataHolder& holder, const char* component, const std::string& rowId,
                       std::vector<std::string>& rows) {
    rows.clear();
    return holder.getInstancesByParameter(vocab::ds::CHANNEL, component, vocab::prop::CHANNEL_ID, rowId, rows) | FC_OK;
}

std::string hexCode(uint32_t code) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    do {
        text.insert(text.begin(), digits[code & 0xF]);
        code >>= 4;
    } while (code != 0);
    return text;
}

int32_t clampToInt(unsigned long long value) {
    const auto top = static_cast<unsigned long long>(std::numeric_limits<int32_t>::max());
    return static_cast<int32_t>(value > top ? top : value);
}

}  // namespace side
