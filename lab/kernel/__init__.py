# SPDX-License-Identifier: MIT
"""The laboratory with the real kernel: a guest, modems that are programs, exchange and provider."""
