# The delegate with all that hangs on it, and the desktop program. Read from the project's own
# list, for these stand above the windows, and nimbrel_util, from the same folder, far below.
set(NIMBREL_UPDATE_FEED "" CACHE STRING
    "The address of the update feed (https); empty: no request ever leaves")

nimbrel_add_library(nimbrel_app
    SOURCES
        # start, stop and what is asked from outside
        src/app/Application.cpp src/app/Application.h src/app/ApplicationBus.cpp
        src/app/ApplicationBus.h src/app/ApplicationUserInterface.h src/app/Display.cpp
        src/app/Display.h src/app/InstanceLock.cpp
        src/app/InstanceLock.h src/app/NBAppDelegate.cpp src/app/NBAppDelegate.h
        src/app/OrderlyEnd.cpp src/app/OrderlyEnd.h src/app/ProgramArguments.cpp
        src/app/ProgramArguments.h src/app/Requests.cpp src/app/Requests.h src/app/SessionEnd.cpp
        src/app/SessionEnd.h src/app/TerminationSignals.cpp src/app/TerminationSignals.h
        # the presence in the panel
        src/app/AboutWindow.cpp src/app/AboutWindow.h src/app/NBStatusItemController.cpp
        src/app/NBStatusItemController.h src/app/NBStatusItemMenu.cpp src/app/TrayHost.cpp
        src/app/TrayHost.h
        # updates
        src/app/Appcast.cpp src/app/Appcast.h src/app/AppcastItem.cpp src/app/AppcastItem.h
        src/app/FeedAddress.cpp src/app/FeedAddress.h src/app/FeedDate.cpp src/app/FeedDate.h
        src/app/FeedParameter.h src/app/FeedRequest.cpp src/app/FeedRequest.h src/app/FeedScan.cpp
        src/app/FeedScan.h src/app/NBUpdateDelegate.cpp src/app/NBUpdateDelegate.h
        src/app/UpdateAlerts.cpp src/app/UpdateAlerts.h src/app/UpdateFailure.cpp
        src/app/UpdateFailure.h src/app/UpdateTimes.h src/app/Updater.cpp src/app/Updater.h
        # services
        src/app/NBNimbrelServicesProvider.cpp src/app/NBNimbrelServicesProvider.h
        src/app/ResolvedPaths.cpp src/app/ResolvedPaths.h
    USES nimbrel_windows nimbrel_assistants nimbrel_assistant nimbrel_volume nimbrel_discovery
         nimbrel_util nimbrel_platform nimbrel_fuse nimbrel_fs nimbrel_config nimbrel_crypto
    LINKS Qt6::Core Qt6::DBus Qt6::Widgets
    PRIVATE_LINKS PkgConfig::XCB Qt6::Network)
set_target_properties(nimbrel_app PROPERTIES AUTOMOC ON)
target_compile_definitions(nimbrel_app PRIVATE
    NIMBREL_UPDATE_FEED="${NIMBREL_UPDATE_FEED}" NIMBREL_VERSION="${PROJECT_VERSION}")

# Beside share/nimbrel, as it will be installed.
nimbrel_add_program(nimbrel SOURCES src/app/main.cpp USES nimbrel_app nimbrel_platform nimbrel_fuse)
set_target_properties(nimbrel PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
