// The virtual router: a root, namespaces and interfaces of its own, for tests and for users.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace board {

// A file or directory of the host to copy into the router when it boots.
struct HostFile {
  std::string source;  // absolute path; of a directory, its content is copied
  std::string place;   // absolute path on the router
};

struct Options {
  // Host programs (absolute paths) to place in the router's /usr/bin, with the shared libraries
  // that this process and they have loaded.
  std::vector<std::string> programs = {};
  std::vector<HostFile> files = {};
  // Whether the firmware's daemon stand-ins run (they keep the state files under /tmp fresh).
  bool services = false;
  // With services: devices join, leave and move traffic, instead of staying as /var/board/terminals
  // has them.
  bool lively = false;
  // How many USB disks are plugged in: sda1, sdb1 ..., with some folders on each.
  int usb_disks = 0;
  // The modem that is plugged in, by the name of its profile in rootfs/usr/share/modems; empty for
  // none.
  std::string modem = {};
  // Called in the calling process once the router is up, with the process id that the router's
  // first process has outside.
  std::function<void(int)> on_boot = {};
};

// Boots a router, runs `inside` in a process of it, ends everything and returns the exit status
// of `inside` (128 + signal number when it died of one). When the machine does not allow it,
// prints what is missing to standard error and returns kCannotBoot. The caller has one thread.
int run(const Options& options, const std::function<int()>& inside);
inline constexpr int kCannotBoot = 125;

// The rest is for code that runs inside. What cannot be done is thrown as std::runtime_error.

// Everything as just booted: files, interfaces with their addresses, modem, empty journal and logs.
// Ends what requests have started.
void reset();

// Waits until every command that requests have started has ended; ten seconds at most. (The
// router's `sleep` runs a hundred times faster than asked for.)
void settle();

// Makes settle() not wait for a process that is the caller's own, nor reset() end it.
void exempt(int process);

// The effects so far in order, one line each, after settle(): "uci set network.lan.ipaddr=...",
// "wifi 2.4G set SSID1=...", "modem AT+CPIN?", "run COMMAND", "start COMMAND". A line feed within
// stands as \n.
std::vector<std::string> journal();
void clear_journal();

// What was logged through syslog so far, one element a message, as "<3>text" (severity in angle
// brackets, without facility, time, process and the line feed at the end; a line feed within
// stands as \n); and what was written to /dev/console, byte for byte.
std::vector<std::string> log();
std::string console();

// Gives `interface` an address, creating the interface where it is missing; an empty address
// takes its addresses away.
void set_address(const std::string& interface, const std::string& address,
                 const std::string& netmask = "255.255.255.0");
// A point-to-point interface such as a PPP session has.
void add_point_to_point(const std::string& interface, const std::string& address,
                        const std::string& peer);
// A default route through `interface`, in place of the ones it has.
void set_gateway(const std::string& interface, const std::string& gateway);

std::string read_file(const std::string& path);  // empty when absent
void write_file(const std::string& path, std::string_view content);
void remove_file(const std::string& path);

// Plugs a USB disk in, mounted on /mnt/NAME, with `folders` at its top level; and pulls it out
// again.
void add_usb_disk(const std::string& name, const std::vector<std::string>& folders = {});
void remove_usb_disk(const std::string& name);

// Runs a program of the router without the journal noting it, its standard output discarded;
// returns its exit status.
int quiet(const std::vector<std::string>& arguments);

}  // namespace board
