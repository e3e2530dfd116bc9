# The installed package: find_package(KrGUI) gives the targets Kr::Base … Kr::GUI.
