<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>ComSetting</name>
    <message>
        <source>COM Port:</source>
        <translation>COM Port:</translation>
    </message>
    <message>
        <source>HMI No.:</source>
        <translation>HMI No.:</translation>
    </message>
    <message>
        <source>Device No.:</source>
        <translation>Device No.:</translation>
    </message>
    <message>
        <source>Settings:</source>
        <translation>Settings:</translation>
    </message>
    <message>
        <source>Timeout:</source>
        <translation>Timeout:</translation>
    </message>
    <message>
        <source>Set</source>
        <translation>Set</translation>
    </message>
</context>
<context>
    <name>CommSetting</name>
    <message>
        <source>Not saved: not all settings were read. Please try again.</source>
        <translation>Not saved: not all settings were read. Please try again.</translation>
    </message>
    <message>
        <source>Not saved: the port does not take this connection.</source>
        <translation>Not saved: the port does not take this connection.</translation>
    </message>
    <message>
        <source>Not saved: the port does not take this baud rate.</source>
        <translation>Not saved: the port does not take this baud rate.</translation>
    </message>
    <message>
        <source>Not saved: the port does not take this parity.</source>
        <translation>Not saved: the port does not take this parity.</translation>
    </message>
    <message>
        <source>Not saved in full: the runtime refused a value. Please try again.</source>
        <translation>Not saved in full: the runtime refused a value. Please try again.</translation>
    </message>
</context>
<context>
    <name>Communication</name>
    <message>
        <source>Connection:</source>
        <translation>Connection:</translation>
    </message>
    <message>
        <source>Baud rate:</source>
        <translation>Baud rate:</translation>
    </message>
    <message>
        <source>Data bits:</source>
        <translation>Data bits:</translation>
    </message>
    <message>
        <source>Stop bits:</source>
        <translation>Stop bits:</translation>
    </message>
    <message>
        <source>Parity:</source>
        <translation>Parity:</translation>
    </message>
    <message>
        <source>Wait Timeout(ms):</source>
        <translation>Wait Timeout(ms):</translation>
    </message>
    <message>
        <source>Read Timeout(ms):</source>
        <translation>Read Timeout(ms):</translation>
    </message>
    <message>
        <source>Retry Times:</source>
        <translation>Retry Times:</translation>
    </message>
    <message>
        <source>Retry Timeout(s):</source>
        <translation>Retry Timeout(s):</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Exit</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Save</translation>
    </message>
</context>
<context>
    <name>DownLoadHmiImage</name>
    <message>
        <source>Download</source>
        <translation>Download</translation>
    </message>
    <message>
        <source>Selected HMI firmware:</source>
        <translation>Selected HMI firmware:</translation>
    </message>
    <message>
        <source>Downloading HMI firmware:</source>
        <translation>Downloading HMI firmware:</translation>
    </message>
    <message>
        <source>Please do not shut down or replug the device!</source>
        <translation>Please do not shut down or replug the device!</translation>
    </message>
    <message>
        <source>Update Successful</source>
        <translation>Update Successful</translation>
    </message>
    <message>
        <source>Update failure!</source>
        <translation>Update failure!</translation>
    </message>
    <message>
        <source>Updated firmware</source>
        <translation>Updated firmware</translation>
    </message>
    <message>
        <source>Please restart HMI!!</source>
        <translation>Please restart HMI!!</translation>
    </message>
    <message>
        <source>Failed to get Udisk HMI firmware.</source>
        <translation>Failed to get Udisk HMI firmware.</translation>
    </message>
    <message>
        <source>Failed to get HMI model.</source>
        <translation>Failed to get HMI model.</translation>
    </message>
    <message>
        <source>Project file unmatched. Please select the project that matches HMI firmware.</source>
        <translation>Project file unmatched. Please select the project that matches HMI firmware.</translation>
    </message>
    <message>
        <source>Failed to get Udisk HMI model.</source>
        <translation>Failed to get Udisk HMI model.</translation>
    </message>
    <message>
        <source>Failed to get Local HMI model.</source>
        <translation>Failed to get Local HMI model.</translation>
    </message>
    <message>
        <source>HMI model: </source>
        <translation>HMI model: </translation>
    </message>
    <message>
        <source>Model settings in firmware: </source>
        <translation>Model settings in firmware: </translation>
    </message>
    <message>
        <source>Model does not match, please re-select the firmware file!</source>
        <translation>Model does not match, please re-select the firmware file!</translation>
    </message>
    <message>
        <source>The firmware is a newer version. You risk data loss if you click &quot;OK&quot;. Exit and compile HMI project with new version recommended. </source>
        <translation>The firmware is a newer version. You risk data loss if you click &quot;OK&quot;. Exit and compile HMI project with new version recommended. </translation>
    </message>
</context>
<context>
    <name>DownLoadHmiPro</name>
    <message>
        <source>Download</source>
        <translation>Download</translation>
    </message>
    <message>
        <source>Selected HMI project:</source>
        <translation>Selected HMI project:</translation>
    </message>
    <message>
        <source>Downloading HMI project:</source>
        <translation>Downloading HMI project:</translation>
    </message>
    <message>
        <source>Please do not shut down or replug the device!</source>
        <translation>Please do not shut down or replug the device!</translation>
    </message>
    <message>
        <source>Download successfully!</source>
        <translation>Download successfully!</translation>
    </message>
    <message>
        <source>Download failure!</source>
        <translation>Download failure!</translation>
    </message>
    <message>
        <source>Updated, please restart HMI!</source>
        <translation>Updated, please restart HMI!</translation>
    </message>
    <message>
        <source>The project img file is not found in Udisk.</source>
        <translation>The project img file is not found in Udisk.</translation>
    </message>
    <message>
        <source>Failed to get HMI model.</source>
        <translation>Failed to get HMI model.</translation>
    </message>
    <message>
        <source>Project file unmatched. Please select the project that matches HMI firmware.</source>
        <translation>Project file unmatched. Please select the project that matches HMI firmware.</translation>
    </message>
    <message>
        <source>Failed to update, please restart HMI!</source>
        <translation>Failed to update, please restart HMI!</translation>
    </message>
    <message>
        <source>HMI model: </source>
        <translation>HMI model: </translation>
    </message>
    <message>
        <source>Model settings in project: </source>
        <translation>Model settings in project: </translation>
    </message>
    <message>
        <source>Model does not match, please modify it!</source>
        <translation>Model does not match, please modify it!</translation>
    </message>
</context>
<context>
    <name>DownLoadPlcPro</name>
    <message>
        <source>Download</source>
        <translation>Download</translation>
    </message>
    <message>
        <source>Selected PLC project:</source>
        <translation>Selected PLC project:</translation>
    </message>
    <message>
        <source>Downloading PLC project:</source>
        <translation>Downloading PLC project:</translation>
    </message>
    <message>
        <source>Please do not shut down or replug the device!</source>
        <translation>Please do not shut down or replug the device!</translation>
    </message>
    <message>
        <source>Download successfully!</source>
        <translation>Download successfully!</translation>
    </message>
    <message>
        <source>Download failure!</source>
        <translation>Download failure!</translation>
    </message>
    <message>
        <source>Updated PLC program!</source>
        <translation>Updated PLC program!</translation>
    </message>
    <message>
        <source>Failed to update PLC program!</source>
        <translation>Failed to update PLC program!</translation>
    </message>
    <message>
        <source>Failed to open COM !!</source>
        <translation>Failed to open COM !!</translation>
    </message>
    <message>
        <source>Download timeout,</source>
        <translation>Download timeout,</translation>
    </message>
    <message>
        <source>The reasons may be as follows:</source>
        <translation>The reasons may be as follows:</translation>
    </message>
    <message>
        <source>1.Communication parameter setting error</source>
        <translation>1.Communication parameter setting error</translation>
    </message>
    <message>
        <source>2.Communication cable is abnormal</source>
        <translation>2.Communication cable is abnormal</translation>
    </message>
    <message>
        <source>Download password error!!</source>
        <translation>Download password error!!</translation>
    </message>
    <message>
        <source>Unable to communicate with the PLC!</source>
        <translation>Unable to communicate with the PLC!</translation>
    </message>
    <message>
        <source>Unable to stop PLC</source>
        <translation>Unable to stop PLC</translation>
    </message>
    <message>
        <source>Failed to read file !!</source>
        <translation>Failed to read file !!</translation>
    </message>
    <message>
        <source>Download the PLC program failed!</source>
        <translation>Download the PLC program failed!</translation>
    </message>
    <message>
        <source>1.please check the PLC program!</source>
        <translation>1.please check the PLC program!</translation>
    </message>
    <message>
        <source>Download the PLC comment failed!</source>
        <translation>Download the PLC comment failed!</translation>
    </message>
    <message>
        <source>1.please check the PLC comment!</source>
        <translation>1.please check the PLC comment!</translation>
    </message>
    <message>
        <source>Download the PLC memory failed!</source>
        <translation>Download the PLC memory failed!</translation>
    </message>
    <message>
        <source>1.please check the PLC memory!</source>
        <translation>1.please check the PLC memory!</translation>
    </message>
    <message>
        <source>Failed to download the electronic CAM table!</source>
        <translation>Failed to download the electronic CAM table!</translation>
    </message>
    <message>
        <source>1.please check the related parameters!</source>
        <translation>1.please check the related parameters!</translation>
    </message>
    <message>
        <source>Failed to set disable upload!</source>
        <translation>Failed to set disable upload!</translation>
    </message>
    <message>
        <source>PLC type does not match!!</source>
        <translation>PLC type does not match!!</translation>
    </message>
    <message>
        <source>Download the PLC parameter failed!</source>
        <translation>Download the PLC parameter failed!</translation>
    </message>
    <message>
        <source>1.please check the PLC parameter setting!</source>
        <translation>1.please check the PLC parameter setting!</translation>
    </message>
    <message>
        <source>PLC version does not match!!</source>
        <translation>PLC version does not match!!</translation>
    </message>
    <message>
        <source>Failed to update PLC subprogram!!</source>
        <translation>Failed to update PLC subprogram!!</translation>
    </message>
    <message>
        <source>The file contains prohibit uploading setting, but this PLC does not support it!!</source>
        <translation>The file contains prohibit uploading setting, but this PLC does not support it!!</translation>
    </message>
    <message>
        <source>The file contains subroutine encryption setting, but this PLC does not support it!!</source>
        <translation>The file contains subroutine encryption setting, but this PLC does not support it!!</translation>
    </message>
    <message>
        <source>The file contains program ID, but this PLC does not support it!!</source>
        <translation>The file contains program ID, but this PLC does not support it!!</translation>
    </message>
    <message>
        <source>The program ID error!!</source>
        <translation>The program ID error!!</translation>
    </message>
    <message>
        <source>The program ID required by the PLC isn&apos;t found in the update file, the download error!!</source>
        <translation>The program ID required by the PLC isn&apos;t found in the update file, the download error!!</translation>
    </message>
    <message>
        <source>Program exceeds capacity range!!</source>
        <translation>Program exceeds capacity range!!</translation>
    </message>
    <message>
        <source>Comment exceeds capacity range!!</source>
        <translation>Comment exceeds capacity range!!</translation>
    </message>
</context>
<context>
    <name>General</name>
    <message>
        <source>Date/Time:</source>
        <translation>Date/Time:</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>Time Zone:</source>
        <translation>Time Zone:</translation>
    </message>
    <message>
        <source>Backlight:</source>
        <translation>Backlight:</translation>
    </message>
    <message>
        <source>s</source>
        <translation>s</translation>
    </message>
    <message>
        <source>Brightness:</source>
        <translation>Brightness:</translation>
    </message>
    <message>
        <source>%</source>
        <translation>%</translation>
    </message>
    <message>
        <source>Beep:</source>
        <translation>Beep:</translation>
    </message>
    <message>
        <source>Beep Time:</source>
        <translation>Beep Time:</translation>
    </message>
    <message>
        <source>ms</source>
        <translation>ms</translation>
    </message>
    <message>
        <source>Beep Tone:</source>
        <translation>Beep Tone:</translation>
    </message>
    <message>
        <source>level</source>
        <translation>level</translation>
    </message>
    <message>
        <source>Failed to update time!</source>
        <translation>Failed to update time!</translation>
    </message>
    <message>
        <source>Year</source>
        <translation>Year</translation>
    </message>
    <message>
        <source>Month</source>
        <translation>Month</translation>
    </message>
    <message>
        <source>Day</source>
        <translation>Day</translation>
    </message>
    <message>
        <source>Hour</source>
        <translation>Hour</translation>
    </message>
    <message>
        <source>Minute</source>
        <translation>Minute</translation>
    </message>
    <message>
        <source>Second</source>
        <translation>Second</translation>
    </message>
</context>
<context>
    <name>Info</name>
    <message>
        <source>Model:</source>
        <translation>Model:</translation>
    </message>
    <message>
        <source>Serial No:</source>
        <translation>Serial No:</translation>
    </message>
    <message>
        <source>Machine Id:</source>
        <translation>Machine Id:</translation>
    </message>
    <message>
        <source>Product Id:</source>
        <translation>Product Id:</translation>
    </message>
</context>
<context>
    <name>ListItem</name>
    <message>
        <source>Hidden network</source>
        <translation>Hidden network</translation>
    </message>
</context>
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
    <message>
        <source>Restarting. Please wait.</source>
        <translation>Restarting. Please wait.</translation>
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
    <name>Net4G</name>
    <message>
        <source>netServer not run</source>
        <translation>netServer not run</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Enable</translation>
    </message>
    <message>
        <source>Unplugged</source>
        <translation>Unplugged</translation>
    </message>
    <message>
        <source>4G</source>
        <translation>4G</translation>
    </message>
    <message>
        <source>IP：</source>
        <translation>IP：</translation>
    </message>
    <message>
        <source>IMEI:</source>
        <translation>IMEI:</translation>
    </message>
    <message>
        <source>ICCID:</source>
        <translation>ICCID:</translation>
    </message>
    <message>
        <source>Default APN</source>
        <translation>Default APN</translation>
    </message>
    <message>
        <source>Manual APN</source>
        <translation>Manual APN</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Number</translation>
    </message>
    <message>
        <source>Authentication</source>
        <translation>Authentication</translation>
    </message>
    <message>
        <source>Username</source>
        <translation>Username</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Password</translation>
    </message>
    <message>
        <source>The default access point is used.</source>
        <translation>The default access point is used.</translation>
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
    <message>
        <source>No Ethernet device was found.</source>
        <translation>No Ethernet device was found.</translation>
    </message>
    <message>
        <source>Waiting for an address.</source>
        <translation>Waiting for an address.</translation>
    </message>
    <message>
        <source>Ethernet is switched off.</source>
        <translation>Ethernet is switched off.</translation>
    </message>
</context>
<context>
    <name>NetExtend</name>
    <message>
        <source>Net Diag：</source>
        <translation>Net Diag：</translation>
    </message>
    <message>
        <source>Diag</source>
        <translation>Diag</translation>
    </message>
    <message>
        <source>Connect method：</source>
        <translation>Connect method：</translation>
    </message>
    <message>
        <source>Ethernet</source>
        <translation>Ethernet</translation>
    </message>
    <message>
        <source>Wi-Fi</source>
        <translation>Wi-Fi</translation>
    </message>
    <message>
        <source>4G</source>
        <translation>4G</translation>
    </message>
    <message>
        <source>Not known yet</source>
        <translation>Not known yet</translation>
    </message>
    <message>
        <source>Checks the way to the cloud.</source>
        <translation>Checks the way to the cloud.</translation>
    </message>
    <message>
        <source>The network that is used first.</source>
        <translation>The network that is used first.</translation>
    </message>
</context>
<context>
    <name>NetWiFi</name>
    <message>
        <source>WLAN</source>
        <translation>WLAN</translation>
    </message>
    <message>
        <source>WLAN List</source>
        <translation>WLAN List</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Enable</translation>
    </message>
    <message>
        <source>Unplugged</source>
        <translation>Unplugged</translation>
    </message>
    <message>
        <source>netServer not run</source>
        <translation>netServer not run</translation>
    </message>
    <message>
        <source>Failed to connect Network! Wrong password or weak signal, please reconnect.</source>
        <translation>Failed to connect Network! Wrong password or weak signal, please reconnect.</translation>
    </message>
    <message>
        <source>Searching for networks.</source>
        <translation>Searching for networks.</translation>
    </message>
    <message>
        <source>No WLAN device was found.</source>
        <translation>No WLAN device was found.</translation>
    </message>
    <message>
        <source>WLAN is switched off.</source>
        <translation>WLAN is switched off.</translation>
    </message>
    <message>
        <source>No other network was found.</source>
        <translation>No other network was found.</translation>
    </message>
    <message>
        <source>No network was found.</source>
        <translation>No network was found.</translation>
    </message>
    <message>
        <source>The search for networks failed. It is repeated every ten seconds.</source>
        <translation>The search for networks failed. It is repeated every ten seconds.</translation>
    </message>
</context>
<context>
    <name>NetWorkTestItem</name>
    <message>
        <source>Strong</source>
        <translation>Strong</translation>
    </message>
    <message>
        <source>Medium</source>
        <translation>Medium</translation>
    </message>
    <message>
        <source>Weak</source>
        <translation>Weak</translation>
    </message>
    <message>
        <source>    Get resource file failed!</source>
        <translation>    Get resource file failed!</translation>
    </message>
    <message>
        <source>    Time synchronize failed!</source>
        <translation>    Time synchronize failed!</translation>
    </message>
    <message>
        <source>    Certificate download failed!</source>
        <translation>    Certificate download failed!</translation>
    </message>
    <message>
        <source>    Server connection failed!</source>
        <translation>    Server connection failed!</translation>
    </message>
    <message>
        <source>    Topic subscribe failed!</source>
        <translation>    Topic subscribe failed!</translation>
    </message>
    <message>
        <source>:China</source>
        <translation>:China</translation>
    </message>
    <message>
        <source>:ASEAN</source>
        <translation>:ASEAN</translation>
    </message>
    <message>
        <source>:Europe</source>
        <translation>:Europe</translation>
    </message>
</context>
<context>
    <name>NetWorkTestUi</name>
    <message>
        <source>Network diagnosis</source>
        <translation>Network diagnosis</translation>
    </message>
    <message>
        <source>Start Diag</source>
        <translation>Start Diag</translation>
    </message>
    <message>
        <source>Press Start Diag to check the way to the cloud.</source>
        <translation>Press Start Diag to check the way to the cloud.</translation>
    </message>
    <message>
        <source>The panel is busy. Please try again.</source>
        <translation>The panel is busy. Please try again.</translation>
    </message>
    <message>
        <source>Diagnosing</source>
        <translation>Diagnosing</translation>
    </message>
    <message>
        <source>The network connection is successful.</source>
        <translation>The network connection is successful.</translation>
    </message>
    <message>
        <source>The cloud settings are missing or damaged. The network was not checked.</source>
        <translation>The cloud settings are missing or damaged. The network was not checked.</translation>
    </message>
    <message>
        <source>No network reaches the cloud. See the failed items.</source>
        <translation>No network reaches the cloud. See the failed items.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Please select HMI firmware.</source>
        <translation>Please select HMI firmware.</translation>
    </message>
    <message>
        <source>Please select HMI project.</source>
        <translation>Please select HMI project.</translation>
    </message>
    <message>
        <source>Please select PLC project.</source>
        <translation>Please select PLC project.</translation>
    </message>
    <message>
        <source>Failed to recognize U disk, please check it or change new one!</source>
        <translation>Failed to recognize U disk, please check it or change new one!</translation>
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
<context>
    <name>Version</name>
    <message>
        <source>Program</source>
        <translation>Program</translation>
    </message>
    <message>
        <source>Build</source>
        <translation>Build</translation>
    </message>
    <message>
        <source>Kernel</source>
        <translation>Kernel</translation>
    </message>
    <message>
        <source>Other software</source>
        <translation>Other software</translation>
    </message>
    <message>
        <source>Reading...</source>
        <translation>Reading...</translation>
    </message>
    <message>
        <source>No answer. Please open this page again.</source>
        <translation>No answer. Please open this page again.</translation>
    </message>
    <message>
        <source>The panel is busy. Please open this page again.</source>
        <translation>The panel is busy. Please open this page again.</translation>
    </message>
</context>
<context>
    <name>WifiPara</name>
    <message>
        <source>WiFiPara</source>
        <translation>WiFiPara</translation>
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
        <source>Save</source>
        <translation>Save</translation>
    </message>
</context>
</TS>
