// SPDX-License-Identifier: MIT
// The bus interface as clients know it, in the order of its description: a second source beside the
// XML file and the code.
#pragma once

#include <array>

/// A signal: its name, its argument names, their D-Bus types, their types in the code.
struct BusSignal
{
    const char *name;
    const char *arguments;
    const char *signature;
    const char *types;
};

/// A method: its name, the names of what goes in, the D-Bus types of what goes in and out, its
/// types in the code.
struct BusMethod
{
    const char *name;
    const char *arguments;
    const char *in;
    const char *out;
    const char *types;
    const char *result;
};

// clang-format off
constexpr std::array<BusSignal, 26> busSignals = {{
    {"transmissionSpeed", "rx,tx", "uu", "uint,uint"},
    {"transmissionErrors", "rx,tx", "uu", "uint,uint"},
    {"transmissionBytes", "rx,tx", "dd", "double,double"},
    {"IP", "ip", "s", "QString"},
    {"defaultRoute", "iface", "s", "QString"},
    {"connectionTime", "h,m,s", "iii", "int,int,int"},
    {"modemPlugged", "name", "s", "QString"},
    {"newModemPlugged", "name", "s", "QString"},
    {"modemUnplugged", "", "", ""},
    {"newModemUnplugged", "", "", ""},
    {"incorrectDNS", "", "", ""},
    {"settingOpenDNS", "success", "b", "bool"},
    {"connectionEstablished", "", "", ""},
    {"connectionTerminated", "", "", ""},
    {"establishingConnection", "", "", ""},
    {"setEnabledConnect", "enable", "b", "bool"},
    {"connectionState", "state", "i", "int"},
    {"connectionTimeout", "", "", ""},
    {"restartModemStarted", "", "", ""},
    {"restartModemFinished", "", "", ""},
    {"accountDataChanged", "success", "b", "bool"},
    {"compilingDriver", "", "", ""},
    {"compilationFinished", "success", "b", "bool"},
    {"synchronizing", "", "", ""},
    {"synchronizationFailed", "", "", ""},
    {"invalidAccountData", "", "", ""},
}};

constexpr std::array<BusMethod, 24> busMethods = {{
    {"getIP", "interface", "s", "s", "QString", "QString"},
    {"getIP", "", "", "s", "", "QString"},
    {"getDefaultRoute", "", "", "s", "", "QString"},
    {"setConnectAtBoot", "connect", "b", "", "bool", "void"},
    {"setConnectAtModemPlug", "connect", "b", "", "bool", "void"},
    {"establishConnection", "", "", "", "", "void"},
    {"terminateConnection", "", "", "", "", "void"},
    {"restartModem", "", "", "", "", "void"},
    {"setIdlenessTime", "idleness", "i", "", "int", "void"},
    {"useNewModem", "", "", "", "", "void"},
    {"setAccountData", "login,password", "ss", "", "QString,QString", "void"},
    {"getIsModemPlugged", "", "", "b", "", "bool"},
    {"getIsCompiling", "", "", "b", "", "bool"},
    {"getConnectAtBoot", "", "", "b", "", "bool"},
    {"getConnectAtModemPlug", "", "", "b", "", "bool"},
    {"reply", "", "", "b", "", "bool"},
    {"getVPI", "", "", "s", "", "QString"},
    {"getVCI", "", "", "s", "", "QString"},
    {"getProtocol", "", "", "s", "", "QString"},
    {"getService", "", "", "s", "", "QString"},
    {"getInterface", "", "", "s", "", "QString"},
    {"getConnectionState", "", "", "i", "", "int"},
    {"getIdlenessTime", "", "", "i", "", "int"},
    {"getLoginAndPassword", "", "", "as", "", "QStringList"},
}};
// clang-format on
