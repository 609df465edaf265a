#ifndef HOMELOOM_DESKTOP_RPC_PORT_CONTROLS_H
#define HOMELOOM_DESKTOP_RPC_PORT_CONTROLS_H

#include <chrono>
#include <string>

// What the desk has set, for those who must obey it.
namespace homeloom::desktop::rpc {

/// Where an application would listen; nobody does as long as the folder wasn't made.
std::string pathOfSocket(const std::string& appId, const std::string& portName);

enum class Operation { Create, Connect, Send };
/// The code with which it fails; 0 if it works.
int failureOf(Operation operation);

void countProxy(int difference);
void countConnection(int difference);

}  // namespace homeloom::desktop::rpc

#endif
