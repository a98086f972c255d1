#pragma once

#include <string>

// A folder whose path has this many bytes more, in names of 200.
inline std::string deepFolder(std::size_t bytes) {
    std::string path;
    while (path.size() + 200 < bytes)
        path += std::string(199, 'd') + '/';
    return path + std::string(bytes - path.size(), 'e');
}
