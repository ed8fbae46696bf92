# SPDX-License-Identifier: MIT
"""What stands for a service of the desktop: a name on the session bus, answered by the test's process."""
from jeepney import DBusAddress, HeaderFields, MessageType, new_error, new_method_return, new_signal

from ..machine.played_service import PlayedService

PROPERTIES = "org.freedesktop.DBus.Properties"
INTROSPECTABLE = "org.freedesktop.DBus.Introspectable"


class BusService(PlayedService):
    """A connection that owns NAME and answers calls. For each method of INTERFACE there is a function
    here named on_METHOD, which is given the caller's unique name and the arguments and returns
    (signature, values); it runs in the connection's own thread and may make no calls itself."""

    PATH = INTERFACE = ""

    def __init__(self, sock, uid):
        self._frozen = False
        self._held_back = []
        super().__init__(sock, uid)

    def freeze(self):
        """From now on calls stay unanswered; what thaw does not answer, never is."""
        self._frozen = True

    def thaw(self):
        """Answers what has come meanwhile, and all that comes."""
        with self._changed:
            self._frozen = False
            waiting, self._held_back = self._held_back, []
            for message in waiting:
                self._answer(message)

    def emit(self, name, signature="", *values, path=None, interface=None):
        """Sends a signal to everybody."""
        emitter = DBusAddress(path or self.PATH, interface=interface or self.INTERFACE)
        self.send(new_signal(emitter, name, signature or None, values))

    def properties(self):
        """The properties of INTERFACE: name to (signature, value)."""
        return {}

    def description(self):
        """Enough for clients that read a property only when it is described."""
        properties = "".join('<property name="%s" type="%s" access="read"/>' % (name, signature)
                             for name, (signature, _) in self.properties().items())
        return '<node><interface name="%s">%s</interface></node>' % (self.INTERFACE, properties)

    def _take(self, message, now):
        if self._frozen and message.header.message_type is MessageType.method_call:
            self._held_back.append(message)
        else:
            super()._take(message, now)

    def _answer(self, message):
        fields = message.header.fields
        interface, method = fields.get(HeaderFields.interface), fields[HeaderFields.member]
        answer = getattr(self, "on_" + method, None)
        if interface == INTROSPECTABLE:
            reply = new_method_return(message, "s", (self.description(),))
        elif interface == PROPERTIES and method == "Get":
            value = self.properties().get(message.body[1])
            reply = new_method_return(message, "v", (value,)) if value else None
        elif interface == PROPERTIES and method == "GetAll":
            reply = new_method_return(message, "a{sv}", (self.properties(),))
        elif interface in (self.INTERFACE, None) and answer:
            signature, values = answer(fields.get(HeaderFields.sender), *message.body)
            reply = new_method_return(message, signature or None, values)
        else:
            reply = None
        self.send(reply or new_error(message, "org.freedesktop.DBus.Error.UnknownMethod", "s",
                                     ("no " + method,)))
