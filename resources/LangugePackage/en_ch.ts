<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>ComSetting</name>
    <message>
        <source>COM Port:</source>
        <translation>串口：</translation>
    </message>
    <message>
        <source>HMI No.:</source>
        <translation>HMI 站号：</translation>
    </message>
    <message>
        <source>Device No.:</source>
        <translation>设备站号：</translation>
    </message>
    <message>
        <source>Settings:</source>
        <translation>通信参数：</translation>
    </message>
    <message>
        <source>Timeout:</source>
        <translation>超时参数：</translation>
    </message>
    <message>
        <source>Set</source>
        <translation>设置</translation>
    </message>
</context>
<context>
    <name>CommSetting</name>
    <message>
        <source>Not saved: not all settings were read. Please try again.</source>
        <translation>未保存：设置未能全部读取，请重试。</translation>
    </message>
    <message>
        <source>Not saved: the port does not take this connection.</source>
        <translation>未保存：此串口不支持该连接方式。</translation>
    </message>
    <message>
        <source>Not saved: the port does not take this baud rate.</source>
        <translation>未保存：此串口不支持该波特率。</translation>
    </message>
    <message>
        <source>Not saved: the port does not take this parity.</source>
        <translation>未保存：此串口不支持该校验方式。</translation>
    </message>
    <message>
        <source>Not saved in full: the runtime refused a value. Please try again.</source>
        <translation>未全部保存：控制运行时拒绝了某个值，请重试。</translation>
    </message>
</context>
<context>
    <name>Communication</name>
    <message>
        <source>Connection:</source>
        <translation>连接类型：</translation>
    </message>
    <message>
        <source>Baud rate:</source>
        <translation>波特率：</translation>
    </message>
    <message>
        <source>Data bits:</source>
        <translation>数据位：</translation>
    </message>
    <message>
        <source>Stop bits:</source>
        <translation>停止位：</translation>
    </message>
    <message>
        <source>Parity:</source>
        <translation>校验：</translation>
    </message>
    <message>
        <source>Wait Timeout(ms):</source>
        <translation>等待超时(ms)：</translation>
    </message>
    <message>
        <source>Read Timeout(ms):</source>
        <translation>读取超时(ms)：</translation>
    </message>
    <message>
        <source>Retry Times:</source>
        <translation>重试次数：</translation>
    </message>
    <message>
        <source>Retry Timeout(s):</source>
        <translation>重试超时(s)：</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
</context>
<context>
    <name>DownLoadHmiImage</name>
    <message>
        <source>Download</source>
        <translation>下载</translation>
    </message>
    <message>
        <source>Selected HMI firmware:</source>
        <translation>已选择 HMI 固件：</translation>
    </message>
    <message>
        <source>Downloading HMI firmware:</source>
        <translation>正在下载 HMI 固件：</translation>
    </message>
    <message>
        <source>Please do not shut down or replug the device!</source>
        <translation>请勿关机或插拔设备！</translation>
    </message>
    <message>
        <source>Update Successful</source>
        <translation>更新成功</translation>
    </message>
    <message>
        <source>Update failure!</source>
        <translation>更新失败！</translation>
    </message>
    <message>
        <source>Updated firmware</source>
        <translation>固件已更新</translation>
    </message>
    <message>
        <source>Please restart HMI!!</source>
        <translation>请重启 HMI！！</translation>
    </message>
    <message>
        <source>Failed to get Udisk HMI firmware.</source>
        <translation>获取 U 盘中的 HMI 固件失败。</translation>
    </message>
    <message>
        <source>Failed to get HMI model.</source>
        <translation>获取 HMI 型号失败。</translation>
    </message>
    <message>
        <source>Project file unmatched. Please select the project that matches HMI firmware.</source>
        <translation>工程文件不匹配，请选择与 HMI 固件匹配的工程。</translation>
    </message>
    <message>
        <source>Failed to get Udisk HMI model.</source>
        <translation>获取 U 盘固件的 HMI 型号失败。</translation>
    </message>
    <message>
        <source>Failed to get Local HMI model.</source>
        <translation>获取本机 HMI 型号失败。</translation>
    </message>
    <message>
        <source>HMI model: </source>
        <translation>HMI 型号：</translation>
    </message>
    <message>
        <source>Model settings in firmware: </source>
        <translation>固件中的型号：</translation>
    </message>
    <message>
        <source>Model does not match, please re-select the firmware file!</source>
        <translation>型号不匹配，请重新选择固件文件！</translation>
    </message>
    <message>
        <source>The firmware is a newer version. You risk data loss if you click &quot;OK&quot;. Exit and compile HMI project with new version recommended. </source>
        <translation>固件版本较新，继续可能丢失数据。建议退出，用新版软件重新编译 HMI 工程。</translation>
    </message>
</context>
<context>
    <name>DownLoadHmiPro</name>
    <message>
        <source>Download</source>
        <translation>下载</translation>
    </message>
    <message>
        <source>Selected HMI project:</source>
        <translation>已选择 HMI 工程：</translation>
    </message>
    <message>
        <source>Downloading HMI project:</source>
        <translation>正在下载 HMI 工程：</translation>
    </message>
    <message>
        <source>Please do not shut down or replug the device!</source>
        <translation>请勿关机或插拔设备！</translation>
    </message>
    <message>
        <source>Download successfully!</source>
        <translation>下载成功！</translation>
    </message>
    <message>
        <source>Download failure!</source>
        <translation>下载失败！</translation>
    </message>
    <message>
        <source>Updated, please restart HMI!</source>
        <translation>更新完成，请重启 HMI！</translation>
    </message>
    <message>
        <source>The project img file is not found in Udisk.</source>
        <translation>U 盘中未找到工程文件。</translation>
    </message>
    <message>
        <source>Failed to get HMI model.</source>
        <translation>获取 HMI 型号失败。</translation>
    </message>
    <message>
        <source>Project file unmatched. Please select the project that matches HMI firmware.</source>
        <translation>工程文件不匹配，请选择与 HMI 固件匹配的工程。</translation>
    </message>
    <message>
        <source>Failed to update, please restart HMI!</source>
        <translation>更新失败，请重启 HMI！</translation>
    </message>
    <message>
        <source>HMI model: </source>
        <translation>HMI 型号：</translation>
    </message>
    <message>
        <source>Model settings in project: </source>
        <translation>工程中的型号：</translation>
    </message>
    <message>
        <source>Model does not match, please modify it!</source>
        <translation>型号不匹配，请修改！</translation>
    </message>
</context>
<context>
    <name>DownLoadPlcPro</name>
    <message>
        <source>Download</source>
        <translation>下载</translation>
    </message>
    <message>
        <source>Selected PLC project:</source>
        <translation>已选择 PLC 工程：</translation>
    </message>
    <message>
        <source>Downloading PLC project:</source>
        <translation>正在下载 PLC 工程：</translation>
    </message>
    <message>
        <source>Please do not shut down or replug the device!</source>
        <translation>请勿关机或插拔设备！</translation>
    </message>
    <message>
        <source>Download successfully!</source>
        <translation>下载成功！</translation>
    </message>
    <message>
        <source>Download failure!</source>
        <translation>下载失败！</translation>
    </message>
    <message>
        <source>Updated PLC program!</source>
        <translation>PLC 程序已更新！</translation>
    </message>
    <message>
        <source>Failed to update PLC program!</source>
        <translation>PLC 程序更新失败！</translation>
    </message>
    <message>
        <source>Failed to open COM !!</source>
        <translation>打开串口失败！！</translation>
    </message>
    <message>
        <source>Download timeout,</source>
        <translation>下载超时，</translation>
    </message>
    <message>
        <source>The reasons may be as follows:</source>
        <translation>可能的原因如下：</translation>
    </message>
    <message>
        <source>1.Communication parameter setting error</source>
        <translation>1.通讯参数设置错误</translation>
    </message>
    <message>
        <source>2.Communication cable is abnormal</source>
        <translation>2.通讯电缆异常</translation>
    </message>
    <message>
        <source>Download password error!!</source>
        <translation>下载密码错误！！</translation>
    </message>
    <message>
        <source>Unable to communicate with the PLC!</source>
        <translation>无法与 PLC 通讯！</translation>
    </message>
    <message>
        <source>Unable to stop PLC</source>
        <translation>无法停止 PLC</translation>
    </message>
    <message>
        <source>Failed to read file !!</source>
        <translation>读取文件失败！！</translation>
    </message>
    <message>
        <source>Download the PLC program failed!</source>
        <translation>下载 PLC 程序失败！</translation>
    </message>
    <message>
        <source>1.please check the PLC program!</source>
        <translation>1.请检查 PLC 程序！</translation>
    </message>
    <message>
        <source>Download the PLC comment failed!</source>
        <translation>下载 PLC 注释失败！</translation>
    </message>
    <message>
        <source>1.please check the PLC comment!</source>
        <translation>1.请检查 PLC 注释！</translation>
    </message>
    <message>
        <source>Download the PLC memory failed!</source>
        <translation>下载 PLC 内存数据失败！</translation>
    </message>
    <message>
        <source>1.please check the PLC memory!</source>
        <translation>1.请检查 PLC 内存数据！</translation>
    </message>
    <message>
        <source>Failed to download the electronic CAM table!</source>
        <translation>下载电子凸轮表失败！</translation>
    </message>
    <message>
        <source>1.please check the related parameters!</source>
        <translation>1.请检查相关参数！</translation>
    </message>
    <message>
        <source>Failed to set disable upload!</source>
        <translation>设置禁止上传失败！</translation>
    </message>
    <message>
        <source>PLC type does not match!!</source>
        <translation>PLC 类型不匹配！！</translation>
    </message>
    <message>
        <source>Download the PLC parameter failed!</source>
        <translation>下载 PLC 参数失败！</translation>
    </message>
    <message>
        <source>1.please check the PLC parameter setting!</source>
        <translation>1.请检查 PLC 参数设置！</translation>
    </message>
    <message>
        <source>PLC version does not match!!</source>
        <translation>PLC 版本不匹配！！</translation>
    </message>
    <message>
        <source>Failed to update PLC subprogram!!</source>
        <translation>PLC 子程序更新失败！！</translation>
    </message>
    <message>
        <source>The file contains prohibit uploading setting, but this PLC does not support it!!</source>
        <translation>文件包含禁止上传设置，但此 PLC 不支持！！</translation>
    </message>
    <message>
        <source>The file contains subroutine encryption setting, but this PLC does not support it!!</source>
        <translation>文件包含子程序加密设置，但此 PLC 不支持！！</translation>
    </message>
    <message>
        <source>The file contains program ID, but this PLC does not support it!!</source>
        <translation>文件包含程序 ID，但此 PLC 不支持！！</translation>
    </message>
    <message>
        <source>The program ID error!!</source>
        <translation>程序 ID 错误！！</translation>
    </message>
    <message>
        <source>The program ID required by the PLC isn&apos;t found in the update file, the download error!!</source>
        <translation>更新文件中没有 PLC 所要求的程序 ID，下载出错！！</translation>
    </message>
    <message>
        <source>Program exceeds capacity range!!</source>
        <translation>程序超出容量范围！！</translation>
    </message>
    <message>
        <source>Comment exceeds capacity range!!</source>
        <translation>注释超出容量范围！！</translation>
    </message>
</context>
<context>
    <name>General</name>
    <message>
        <source>Date/Time:</source>
        <translation>日期/时间：</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Time Zone:</source>
        <translation>时区：</translation>
    </message>
    <message>
        <source>Backlight:</source>
        <translation>背光时间：</translation>
    </message>
    <message>
        <source>s</source>
        <translation>秒</translation>
    </message>
    <message>
        <source>Brightness:</source>
        <translation>背光亮度：</translation>
    </message>
    <message>
        <source>%</source>
        <translation>%</translation>
    </message>
    <message>
        <source>Beep:</source>
        <translation>蜂鸣器：</translation>
    </message>
    <message>
        <source>Beep Time:</source>
        <translation>蜂鸣时间：</translation>
    </message>
    <message>
        <source>ms</source>
        <translation>毫秒</translation>
    </message>
    <message>
        <source>Beep Tone:</source>
        <translation>蜂鸣音调：</translation>
    </message>
    <message>
        <source>level</source>
        <translation>级</translation>
    </message>
    <message>
        <source>Failed to update time!</source>
        <translation>更新时间失败！</translation>
    </message>
    <message>
        <source>Year</source>
        <translation>年</translation>
    </message>
    <message>
        <source>Month</source>
        <translation>月</translation>
    </message>
    <message>
        <source>Day</source>
        <translation>日</translation>
    </message>
    <message>
        <source>Hour</source>
        <translation>时</translation>
    </message>
    <message>
        <source>Minute</source>
        <translation>分</translation>
    </message>
    <message>
        <source>Second</source>
        <translation>秒</translation>
    </message>
</context>
<context>
    <name>Info</name>
    <message>
        <source>Model:</source>
        <translation>型号：</translation>
    </message>
    <message>
        <source>Serial No:</source>
        <translation>序列号：</translation>
    </message>
    <message>
        <source>Machine Id:</source>
        <translation>机器标识：</translation>
    </message>
    <message>
        <source>Product Id:</source>
        <translation>产品标识：</translation>
    </message>
</context>
<context>
    <name>ListItem</name>
    <message>
        <source>Hidden network</source>
        <translation>隐藏的网络</translation>
    </message>
</context>
<context>
    <name>MainWin</name>
    <message>
        <source>netServer not run</source>
        <translation>网络服务 netServer 未运行</translation>
    </message>
    <message>
        <source>Are you sure you want to restart HMI?</source>
        <translation>确定要重启 HMI 吗？</translation>
    </message>
    <message>
        <source>Restarting. Please wait.</source>
        <translation>正在重启，请稍候。</translation>
    </message>
</context>
<context>
    <name>MessageBox</name>
    <message>
        <source>Dialog</source>
        <translation>对话框</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>Net4G</name>
    <message>
        <source>netServer not run</source>
        <translation>网络服务 netServer 未运行</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>未启用</translation>
    </message>
    <message>
        <source>Unplugged</source>
        <translation>未接入</translation>
    </message>
    <message>
        <source>4G</source>
        <translation>4G</translation>
    </message>
    <message>
        <source>IP：</source>
        <translation>IP 地址：</translation>
    </message>
    <message>
        <source>IMEI:</source>
        <translation>IMEI：</translation>
    </message>
    <message>
        <source>ICCID:</source>
        <translation>ICCID：</translation>
    </message>
    <message>
        <source>Default APN</source>
        <translation>默认 APN</translation>
    </message>
    <message>
        <source>Manual APN</source>
        <translation>手动 APN</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>接入点</translation>
    </message>
    <message>
        <source>Authentication</source>
        <translation>认证方式</translation>
    </message>
    <message>
        <source>Username</source>
        <translation>用户名</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>密码</translation>
    </message>
    <message>
        <source>The default access point is used.</source>
        <translation>使用默认接入点。</translation>
    </message>
</context>
<context>
    <name>NetEth</name>
    <message>
        <source>Ethernet</source>
        <translation>以太网</translation>
    </message>
    <message>
        <source>DHCP</source>
        <translation>DHCP</translation>
    </message>
    <message>
        <source>Static IP</source>
        <translation>静态 IP</translation>
    </message>
    <message>
        <source>IP：</source>
        <translation>IP 地址：</translation>
    </message>
    <message>
        <source>Netmask：</source>
        <translation>子网掩码：</translation>
    </message>
    <message>
        <source>Gateway：</source>
        <translation>网关：</translation>
    </message>
    <message>
        <source>DNS1：</source>
        <translation>首选 DNS：</translation>
    </message>
    <message>
        <source>DNS2：</source>
        <translation>备用 DNS：</translation>
    </message>
    <message>
        <source>MAC：</source>
        <translation>MAC 地址：</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>未启用</translation>
    </message>
    <message>
        <source>Unplugged</source>
        <translation>未接入</translation>
    </message>
    <message>
        <source>No Ethernet device was found.</source>
        <translation>未找到以太网设备。</translation>
    </message>
    <message>
        <source>Waiting for an address.</source>
        <translation>正在等待分配地址。</translation>
    </message>
    <message>
        <source>Ethernet is switched off.</source>
        <translation>以太网已关闭。</translation>
    </message>
</context>
<context>
    <name>NetExtend</name>
    <message>
        <source>Net Diag：</source>
        <translation>网络诊断：</translation>
    </message>
    <message>
        <source>Diag</source>
        <translation>诊断</translation>
    </message>
    <message>
        <source>Connect method：</source>
        <translation>首选网络：</translation>
    </message>
    <message>
        <source>Ethernet</source>
        <translation>以太网</translation>
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
        <translation>尚未获知</translation>
    </message>
    <message>
        <source>Checks the way to the cloud.</source>
        <translation>检查无法连接云的原因。</translation>
    </message>
    <message>
        <source>The network that is used first.</source>
        <translation>优先使用的网络。</translation>
    </message>
</context>
<context>
    <name>NetWiFi</name>
    <message>
        <source>WLAN</source>
        <translation>无线局域网</translation>
    </message>
    <message>
        <source>WLAN List</source>
        <translation>无线局域网列表</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>未启用</translation>
    </message>
    <message>
        <source>Unplugged</source>
        <translation>未接入</translation>
    </message>
    <message>
        <source>netServer not run</source>
        <translation>网络服务 netServer 未运行</translation>
    </message>
    <message>
        <source>Failed to connect Network! Wrong password or weak signal, please reconnect.</source>
        <translation>网络连接失败！密码错误或信号较弱，请重新连接。</translation>
    </message>
    <message>
        <source>Searching for networks.</source>
        <translation>正在搜索网络。</translation>
    </message>
    <message>
        <source>No WLAN device was found.</source>
        <translation>未找到无线局域网设备。</translation>
    </message>
    <message>
        <source>WLAN is switched off.</source>
        <translation>无线局域网已关闭。</translation>
    </message>
    <message>
        <source>No other network was found.</source>
        <translation>未找到其他网络。</translation>
    </message>
    <message>
        <source>No network was found.</source>
        <translation>未找到网络。</translation>
    </message>
    <message>
        <source>The search for networks failed. It is repeated every ten seconds.</source>
        <translation>搜索网络失败，每十秒重试一次。</translation>
    </message>
</context>
<context>
    <name>NetWorkTestItem</name>
    <message>
        <source>Strong</source>
        <translation>强</translation>
    </message>
    <message>
        <source>Medium</source>
        <translation>中</translation>
    </message>
    <message>
        <source>Weak</source>
        <translation>弱</translation>
    </message>
    <message>
        <source>    Get resource file failed!</source>
        <translation>    获取资源文件失败！</translation>
    </message>
    <message>
        <source>    Time synchronize failed!</source>
        <translation>    时间同步失败！</translation>
    </message>
    <message>
        <source>    Certificate download failed!</source>
        <translation>    证书下载失败！</translation>
    </message>
    <message>
        <source>    Server connection failed!</source>
        <translation>    服务器连接失败！</translation>
    </message>
    <message>
        <source>    Topic subscribe failed!</source>
        <translation>    主题订阅失败！</translation>
    </message>
    <message>
        <source>:China</source>
        <translation>：中国</translation>
    </message>
    <message>
        <source>:ASEAN</source>
        <translation>：东盟</translation>
    </message>
    <message>
        <source>:Europe</source>
        <translation>：欧洲</translation>
    </message>
</context>
<context>
    <name>NetWorkTestUi</name>
    <message>
        <source>Network diagnosis</source>
        <translation>网络诊断</translation>
    </message>
    <message>
        <source>Start Diag</source>
        <translation>开始诊断</translation>
    </message>
    <message>
        <source>Press Start Diag to check the way to the cloud.</source>
        <translation>请点击“开始诊断”，检查与云的连接。</translation>
    </message>
    <message>
        <source>The panel is busy. Please try again.</source>
        <translation>系统忙，请重试。</translation>
    </message>
    <message>
        <source>Diagnosing</source>
        <translation>正在诊断</translation>
    </message>
    <message>
        <source>The network connection is successful.</source>
        <translation>网络连接成功。</translation>
    </message>
    <message>
        <source>The cloud settings are missing or damaged. The network was not checked.</source>
        <translation>云配置缺失或损坏，未检查网络。</translation>
    </message>
    <message>
        <source>No network reaches the cloud. See the failed items.</source>
        <translation>所有网络均无法连接到云，请查看失败项。</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Please select HMI firmware.</source>
        <translation>请选择 HMI 固件。</translation>
    </message>
    <message>
        <source>Please select HMI project.</source>
        <translation>请选择 HMI 工程。</translation>
    </message>
    <message>
        <source>Please select PLC project.</source>
        <translation>请选择 PLC 工程。</translation>
    </message>
    <message>
        <source>Failed to recognize U disk, please check it or change new one!</source>
        <translation>识别 U 盘失败，请检查或更换 U 盘！</translation>
    </message>
</context>
<context>
    <name>Qt_MainWin</name>
    <message>
        <source>About</source>
        <translation>关于</translation>
    </message>
    <message>
        <source>Network</source>
        <translation>网络</translation>
    </message>
    <message>
        <source>Update</source>
        <translation>更新</translation>
    </message>
    <message>
        <source>System</source>
        <translation>系统</translation>
    </message>
    <message>
        <source>Restart</source>
        <translation>重启</translation>
    </message>
    <message>
        <source>HMI Info</source>
        <translation>HMI 信息</translation>
    </message>
    <message>
        <source>HMI Version</source>
        <translation>HMI 版本</translation>
    </message>
    <message>
        <source>Ethernet</source>
        <translation>以太网</translation>
    </message>
    <message>
        <source>WLAN</source>
        <translation>无线局域网</translation>
    </message>
    <message>
        <source>4G</source>
        <translation>4G</translation>
    </message>
    <message>
        <source>Extend</source>
        <translation>扩展</translation>
    </message>
    <message>
        <source>HMI Project</source>
        <translation>HMI 工程</translation>
    </message>
    <message>
        <source>HMI Firmware</source>
        <translation>HMI 固件</translation>
    </message>
    <message>
        <source>PLC Project</source>
        <translation>PLC 工程</translation>
    </message>
    <message>
        <source>General</source>
        <translation>常规</translation>
    </message>
    <message>
        <source>COM Settings</source>
        <translation>串口设置</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
</context>
<context>
    <name>SoftKeyboard</name>
    <message>
        <source>Please input a password!</source>
        <translation>请输入密码！</translation>
    </message>
    <message>
        <source>Password error!</source>
        <translation>密码错误！</translation>
    </message>
</context>
<context>
    <name>Version</name>
    <message>
        <source>Program</source>
        <translation>程序</translation>
    </message>
    <message>
        <source>Build</source>
        <translation>构建</translation>
    </message>
    <message>
        <source>Kernel</source>
        <translation>内核</translation>
    </message>
    <message>
        <source>Other software</source>
        <translation>其他软件</translation>
    </message>
    <message>
        <source>Reading...</source>
        <translation>正在读取...</translation>
    </message>
    <message>
        <source>No answer. Please open this page again.</source>
        <translation>无应答，请重新打开此页。</translation>
    </message>
    <message>
        <source>The panel is busy. Please open this page again.</source>
        <translation>系统繁忙，请重新打开此页。</translation>
    </message>
</context>
<context>
    <name>WifiPara</name>
    <message>
        <source>WiFiPara</source>
        <translation>Wi-Fi 参数</translation>
    </message>
    <message>
        <source>DHCP</source>
        <translation>DHCP</translation>
    </message>
    <message>
        <source>Static IP</source>
        <translation>静态 IP</translation>
    </message>
    <message>
        <source>IP：</source>
        <translation>IP 地址：</translation>
    </message>
    <message>
        <source>Netmask：</source>
        <translation>子网掩码：</translation>
    </message>
    <message>
        <source>Gateway：</source>
        <translation>网关：</translation>
    </message>
    <message>
        <source>DNS1：</source>
        <translation>首选 DNS：</translation>
    </message>
    <message>
        <source>DNS2：</source>
        <translation>备用 DNS：</translation>
    </message>
    <message>
        <source>MAC：</source>
        <translation>MAC 地址：</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
</context>
</TS>
