# The names that the product goes by, said once. Resources/Info.plist.in carries them into the macOS bundle,
# HelperProtocol/linux/BuiltInBrandValues.h.in into the Linux programs.

set(VESPRA_BRAND_APP_NAME "Vespra")
set(VESPRA_BRAND_APP_BUNDLE_ID "app.vespra.Vespra")
set(VESPRA_BRAND_HELPER_BUNDLE_ID "app.vespra.Helper")
set(VESPRA_BRAND_TEAM_ID "VESPRATEAM" CACHE STRING "The Apple team that signs the macOS programs")
set(VESPRA_BRAND_AGENT_CLI_NAME "vespra-agent")

# Where new versions come from; without both the application does not look for any, as in a system's packages.
set(VESPRA_UPDATE_FEED_URL "" CACHE STRING "The https address of the feed of new versions")
set(VESPRA_UPDATE_PUBLIC_KEY "" CACHE STRING "The Ed25519 key, in Base64, that the feed and the packages are signed by")
set(VESPRA_UPDATE_KEYS "")
if(VESPRA_UPDATE_FEED_URL AND VESPRA_UPDATE_PUBLIC_KEY)
    string(CONCAT VESPRA_UPDATE_KEYS
        "\n\t<key>SUFeedURL</key>\n\t<string>${VESPRA_UPDATE_FEED_URL}</string>"
        "\n\t<key>SUPublicEDKey</key>\n\t<string>${VESPRA_UPDATE_PUBLIC_KEY}</string>"
        "\n\t<key>SURequireSignedFeed</key>\n\t<true/>"
        "\n\t<key>SUVerifyUpdateBeforeExtraction</key>\n\t<true/>")
endif()
