// What --help says below the options.
#pragma once

namespace nimbrel::help {

extern const char *const program;
extern const char *const create;
extern const char *const mount;
extern const char *const unmount;
extern const char *const passwd;
extern const char *const info;
extern const char *const encode;
extern const char *const decode;

} // namespace nimbrel::help
