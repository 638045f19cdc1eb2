<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>MainWin</name>
    <message>
        <source>netServer not run</source>
        <translation>netServer not run</translation>
    </message>
    <message>
        <source>Are you sure you want to restart HMI?</source>
        <translation>Are you sure you want to restart HMI?</translation>
    </message>
</context>
<context>
    <name>MessageBox</name>
    <message>
        <source>Dialog</source>
        <translation>Dialog</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>NetEth</name>
    <message>
        <source>Ethernet</source>
        <translation>Ethernet</translation>
    </message>
    <message>
        <source>DHCP</source>
        <translation>DHCP</translation>
    </message>
    <message>
        <source>Static IP</source>
        <translation>Static IP</translation>
    </message>
    <message>
        <source>IP：</source>
        <translation>IP：</translation>
    </message>
    <message>
        <source>Netmask：</source>
        <translation>Netmask：</translation>
    </message>
    <message>
        <source>Gateway：</source>
        <translation>Gateway：</translation>
    </message>
    <message>
        <source>DNS1：</source>
        <translation>DNS1：</translation>
    </message>
    <message>
        <source>DNS2：</source>
        <translation>DNS2：</translation>
    </message>
    <message>
        <source>MAC：</source>
        <translation>MAC：</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Enable</translation>
    </message>
    <message>
        <source>Unplugged</source>
        <translation>Unplugged</translation>
    </message>
</context>
<context>
    <name>Qt_MainWin</name>
    <message>
        <source>About</source>
        <translation>About</translation>
    </message>
    <message>
        <source>Network</source>
        <translation>Network</translation>
    </message>
    <message>
        <source>Update</source>
        <translation>Update</translation>
    </message>
    <message>
        <source>System</source>
        <translation>System</translation>
    </message>
    <message>
        <source>Restart</source>
        <translation>Restart</translation>
    </message>
    <message>
        <source>HMI Info</source>
        <translation>HMI Info</translation>
    </message>
    <message>
        <source>HMI Version</source>
        <translation>HMI Version</translation>
    </message>
    <message>
        <source>Ethernet</source>
        <translation>Ethernet</translation>
    </message>
    <message>
        <source>WLAN</source>
        <translation>WLAN</translation>
    </message>
    <message>
        <source>4G</source>
        <translation>4G</translation>
    </message>
    <message>
        <source>Extend</source>
        <translation>Extend</translation>
    </message>
    <message>
        <source>HMI Project</source>
        <translation>HMI Project</translation>
    </message>
    <message>
        <source>HMI Firmware</source>
        <translation>HMI Firmware</translation>
    </message>
    <message>
        <source>PLC Project</source>
        <translation>PLC Project</translation>
    </message>
    <message>
        <source>General</source>
        <translation>General</translation>
    </message>
    <message>
        <source>COM Settings</source>
        <translation>COM Settings</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
</context>
<context>
    <name>SoftKeyboard</name>
    <message>
        <source>Please input a password!</source>
        <translation>Please input a password!</translation>
    </message>
    <message>
        <source>Password error!</source>
        <translation>Password error!</translation>
    </message>
</context>
</TS>
