// Who holds a lock, written into the locked file for people: the lock itself is the kernel's.
#ifndef TAVMAP_FORMATS_LOCK_OWNER_H
#define TAVMAP_FORMATS_LOCK_OWNER_H

#include <string>

namespace formats {

// "process 4711 on host, since 2026-03-01 12:00:00 UTC", of this process and this moment.
[[nodiscard]] std::string lockOwnerText();

// Replaces the open file's contents by it. A file that cannot be written stays without: it serves messages.
void writeLockOwner(int fd) noexcept;

// What another process wrote there, one line without control characters; empty when there is nothing.
[[nodiscard]] std::string readLockOwner(int fd);

}  // namespace formats

#endif
