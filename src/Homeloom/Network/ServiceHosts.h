#ifndef HOMELOOM_HOMELOOM_NETWORK_SERVICEHOSTS_H
#define HOMELOOM_HOMELOOM_NETWORK_SERVICEHOSTS_H

/// Where the platform's web services are, by environment; a path follows. Which environment takes which host is up to
/// each class that asks: their tables differ on purpose.
namespace VMFramework::HomeLoom::ServiceHosts {

// The platform's API: devices and their commands.
inline constexpr char kApiProduction[] = "https://api.homeloom.example";
inline constexpr char kApiAcceptance[] = "https://api.acc.homeloom.example";
inline constexpr char kApiStaging[] = "https://api.stg.homeloom.example";
inline constexpr char kApiDevelopment[] = "https://api.dev.homeloom.example";

// The audio-video service: streams of cameras.
inline constexpr char kAvProduction[] = "https://av.homeloom.example";
inline constexpr char kAvAcceptance[] = "https://av.acc.homeloom.example";
inline constexpr char kAvStaging[] = "https://av.stg.homeloom.example";

// File links: pictures that devices keep in the cloud.
inline constexpr char kFilesProduction[] = "https://files.homeloom.example";
inline constexpr char kFilesAcceptance[] = "https://files.acc.homeloom.example";
inline constexpr char kFilesDevelopment[] = "https://files.dev.homeloom.example";

}  // namespace VMFramework::HomeLoom::ServiceHosts

#endif
