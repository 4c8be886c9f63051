// Stays inside crypto/.
#pragma once

namespace nimbrel {

// What does the work, from the most general to the fastest. All give the same bytes.
enum class EngineKind
{
    Library,   // OpenSSL, on any processor
    Processor, // the processor's AES instructions, eight cipher blocks at a time
    Wide       // registers of four cipher blocks (VAES with AVX-512), sixteen at a time
};

// The fastest one of this processor; asked once a process.
[[nodiscard]] EngineKind fastestEngine() noexcept;

} // namespace nimbrel
