#pragma once

namespace nimbrel {

class NBApplication;
class UpdateChecks;
struct VolumeServices;

// What the windows need of the world around them. Nothing is owned; all of it outlives every
// window.
struct WindowServices
{
    NBApplication &application;
    VolumeServices &volumes;
    UpdateChecks &updates;
};

} // namespace nimbrel
