<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>Say</name>
    <message numerus="yes">
        <source>%n thing(s) stop a connection. Begin with the first.</source>
        <translation>
            <numerusform>%n thing stops a connection.</numerusform>
            <numerusform>%n things stop a connection. Begin with the first.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n failed attempt(s).</source>
        <translation>
            <numerusform>%n failed attempt.</numerusform>
            <numerusform>%n failed attempts.</numerusform>
        </translation>
    </message>
</context>
</TS>
