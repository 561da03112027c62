#include "LocalAddress.h"

#include <cstddef>
#include <cstring>

#include "SysmgtRoot.h"
#include "WireConstants.h"

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

std::string LocalAddress::path() const {
    const size_t header = offsetof(sockaddr_un, sun_path);
    if (addressLength <= header)
        return std::string();
    const size_t room = addressLength - header;
    return std::string(address.sun_path,
                       strnlen(address.sun_path, room < sizeof address.sun_path ? room : sizeof address.sun_path));
}
