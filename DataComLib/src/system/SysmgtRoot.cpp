#include "system/SysmgtRoot.h"

#include <cstdlib>

std::string sysmgtPath(const std::string& logicalPath) {
    const char* root = std::getenv("SYSMGT_ROOT");
    if (root == nullptr || *root == '\0' || logicalPath.empty() || logicalPath[0] != '/')
        return logicalPath;
    std::string mapped(root);
    while (mapped.size() > 1 && mapped.back() == '/')
        mapped.pop_back();
    if (mapped == "/")
        return logicalPath;
    return mapped + logicalPath;
}
