#include "engine/LocalAddress.h"

#include <cstddef>
#include <cstring>

#include "datacom/SysmgtRoot.h"
#include "datacom/WireConstants.h"

namespace datacom {

static_assert(sizeof(sockaddr_un) >= wire::SENDER_ADDR_SIZE, "a sender address must fit the receive buffer");

LocalAddress::LocalAddress() {
    clearForReceive();
}

bool LocalAddress::setHostPath(const std::string& hostPath) {
    if (hostPath.size() >= sizeof(address.sun_path))
        return false;
    std::memset(&address, 0, sizeof address);
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, hostPath.data(), hostPath.size());
    addressLength = static_cast<socklen_t>(hostPath.size() + offsetof(sockaddr_un, sun_path));
    return true;
}

bool LocalAddress::setLogicalPath(const std::string& logicalPath) {
    return setHostPath(sysmgtPath(logicalPath));
}

void LocalAddress::clearForReceive() {
    std::memset(&address, 0, sizeof address);
    addressLength = wire::SENDER_ADDR_SIZE;
}

bool LocalAddress::nothingReceived() const {
    return addressLength == wire::SENDER_ADDR_SIZE && address.sun_family == 0;
}

size_t LocalAddress::pathLength() const {
    const size_t header = offsetof(sockaddr_un, sun_path);
    if (addressLength <= header)
        return 0;
    const size_t room = addressLength - header;
    return strnlen(address.sun_path, room < sizeof address.sun_path ? room : sizeof address.sun_path);
}

bool LocalAddress::hasSamePath(const LocalAddress& other) const {
    const size_t length = pathLength();
    return length == other.pathLength() && std::memcmp(address.sun_path, other.address.sun_path, length) == 0;
}

std::string LocalAddress::path() const {
    return std::string(address.sun_path, pathLength());
}

}  // namespace datacom
