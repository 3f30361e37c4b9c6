"""Tags the wheel with the system of its library, for every Python version."""

import os

from hatchling.builders.hooks.plugin.interface import BuildHookInterface


class CustomBuildHook(BuildHookInterface):
    def initialize(self, version, build_data):
        build_data["pure_python"] = False
        build_data["tag"] = f"py3-none-{os.environ['TRACKEDCAM_WHEEL_PLATFORM']}"
