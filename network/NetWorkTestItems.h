// The items of the network diagnosis: their numbers, their keys in the item files, their states.
#pragma once

#include <array>

// An item's key is also the object name of its row. The spellings are the file format's own.
constexpr std::array NETWORK_TEST_KEYS = {
    "Gocloud",
    "Connectrpc",
    "ConnectMQTT",
    "NetWorkEth",
    "EthIdentified",
    "EthEnable",
    "EthConnect",
    "EthGateaway",
    "EthMQTT",
    "EthNetDelay",
    "NetWorkWifi",
    "WifiIdentified",
    "WifiEnable",
    "WifiHotspotConnect",
    "WifiHotspotSignal",
    "WifiHotsGateaway",
    "WifiHotsMQTT",
    "WifiNetDelay",
    "NetTestNetWork4G",
    "4GIdentified",
    "4GEnable",
    "4GSignal",
    "4GCard",
    "4GConnect",
    "4GBaseStationConnect",
    "4GMQTT",
    "4GNetDelay",
    "MOBILEPHONE",
    "MOBILEPHONIdentified",
    "MOBILEPHONMQTT",
    "MOBILEPHONNetDelay",
};

constexpr int NETWORK_TEST_KEY_COUNT = static_cast<int>(NETWORK_TEST_KEYS.size());

// Indices of NETWORK_TEST_KEYS; those that no check runs for have no name.
enum NetWorkTestNumber {
    ITEM_CLOUD = 0,
    ITEM_ETH = 3,
    ITEM_ETH_EXISTS = 4,
    ITEM_ETH_UP = 5,
    ITEM_ETH_CABLE = 6,
    ITEM_ETH_GATEWAY = 7,
    ITEM_ETH_CLOUD = 8,
    ITEM_ETH_DELAY = 9,
    ITEM_WIFI = 10,
    ITEM_WIFI_EXISTS = 11,
    ITEM_WIFI_UP = 12,
    ITEM_WIFI_LINK = 13,
    ITEM_WIFI_SIGNAL = 14,
    ITEM_WIFI_GATEWAY = 15,
    ITEM_WIFI_CLOUD = 16,
    ITEM_WIFI_DELAY = 17,
    ITEM_4G = 18,
    ITEM_4G_EXISTS = 19,
    ITEM_4G_UP = 20,
    ITEM_4G_SIGNAL = 21,
    ITEM_4G_CARD = 22,
    ITEM_4G_LINK = 23,
    ITEM_4G_ATTACHED = 24,
    ITEM_4G_CLOUD = 25,
    ITEM_4G_DELAY = 26,
};

// What sgl_TestStatus says of an item. -5 to -1 are failures too, with the reason.
enum NetWorkTestState {
    TEST_RUNNING = 0,
    TEST_FAILED = 1,
    TEST_PASSED = 2,
    TEST_HEADING = 3,
    TEST_SIGNAL = 4, // the item's value is a level: Wi-Fi in percent, 4G as +CSQ gives it
    TEST_DELAY = 5,  // the item's value is a time in milliseconds
    TEST_NO_RESOURCE = -1,
    TEST_NO_TIME = -2,
    TEST_NO_CERTIFICATE = -3,
    TEST_NO_SERVER = -4,
    TEST_NO_TOPIC = -5,
};

// The outcome of a whole run.
enum NetWorkTestResult {
    RESULT_PASSED = 0,
    RESULT_NO_CONFIGURATION = -1, // the links were not looked at
    RESULT_NO_LINK = -2,          // no link passed
};

// The delay that stands for a server that does not answer, in milliseconds.
constexpr int NO_ANSWER_MS = 9999;
