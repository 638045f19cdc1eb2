<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
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
</TS>
