# SPDX-License-Identifier: MIT
"""com.norvix.Setup1 as a client sees it."""

OBJECT = {"path": "/com/norvix/Setup", "interface": "com.norvix.Setup1"}
INVALID = "com.norvix.Setup1.Error.InvalidValue"
NOT_STORED = "com.norvix.Setup1.Error.NotStored"
_TYPES = {bool: "b", int: "i", str: "s"}


class Setup:
    """The object, called by one client of the bus."""

    def __init__(self, client):
        self.client = client

    def _call(self, method, signature="", *arguments):
        return self.client.call_raw(method, signature, *arguments, **OBJECT)

    def settings(self):
        return {key: value for key, (_, value) in self._call("GetSettings").items()}

    def set(self, **settings):
        """Sets settings with the types of the values; (type, value) chooses another."""
        typed = {key: value if isinstance(value, tuple) else (_TYPES[type(value)], value)
                 for key, value in settings.items()}
        self._call("SetSettings", "a{sv}", typed)

    def arguments(self):
        return self._call("GetPppdArguments")

    def set_arguments(self, *arguments):
        self._call("SetPppdArguments", "as", list(arguments))

    def set_account(self, login, password):
        self._call("SetAccount", "ss", login, password)

    def announced(self):
        """Name, vendor, product, identifier."""
        return self._call("GetAnnouncedModem")

    def changes(self):
        """The settings that were told to have changed, in order."""
        self.client.mark()
        return [{key: value for key, (_, value) in signal.args[0].items()}
                for signal in self.client.signals if signal.name == "SettingsChanged"]
