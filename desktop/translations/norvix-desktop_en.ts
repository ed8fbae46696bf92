<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>Say</name>
    <message numerus="yes">
        <source>%n thing(s) stop a connection</source>
        <translation>
            <numerusform>%n thing stops a connection</numerusform>
            <numerusform>%n things stop a connection</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n check(s) found nothing wrong</source>
        <translation>
            <numerusform>%n check found nothing wrong</numerusform>
            <numerusform>%n checks found nothing wrong</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n had nothing to look at yet</source>
        <translation>
            <numerusform>%n had nothing to look at yet</numerusform>
            <numerusform>%n had nothing to look at yet</numerusform>
        </translation>
    </message>
</context>
</TS>
