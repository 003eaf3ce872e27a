#pragma once

/// What the manual says beside the commands and their options: mdoc(7), changed together with .Dd.
namespace nimbuscope::tool {

inline constexpr const char* manualBeginning = R"(.Dd November 21, 2026
.Dt NIMBUSCOPE 1
.Os
.Sh NAME
.Nm nimbuscope
.Nd work with Nimbuscope's stores, intents and radar data
.Sh SYNOPSIS
.Nm
.Op Fl -store Ar DIR
.Ar NOUN
.Op Ar VERB
.Op Ar ARGUMENTS
.Nm
.Op Ar NOUN Op Ar VERB
.Fl -help
.Nm
.Fl -version
.Sh DESCRIPTION
.Nm
is for the people who work with Nimbuscope, a weather-radar application.
It reads and changes what the application stores, answers in place of its extension,
draws radar tiles and colour schemes, reads what the servers send, and asks the mobile API.
.Pp
Results go to standard output, everything else to standard error.
.Fl -json
prints exactly one JSON document.
A
.Sq -
stands for standard input or output wherever a file is named.
A command that fails leaves no half-written file and no changed store.
)";

inline constexpr const char* manualEnd = R"(.Sh ENVIRONMENT
.Bl -tag -width Ds
.It Ev NIMBUSCOPE_STORE
The directory of the key-value stores, unless
.Fl -store
names it.
.It Ev XDG_DATA_HOME
The stores are in
.Pa nimbuscope
below it, unless something else is said;
.Pa ~/.local/share
by default.
.It Ev LC_ALL , LC_MESSAGES , LC_MEASUREMENT , LC_TIME , LANG , LANGUAGE
The language of texts, units of measurement, and the form of times.
.It Ev TZ
The time zone that the server is told.
.It Ev SSL_CERT_FILE , SSL_CERT_DIR
Certificate authorities to trust instead of the system's.
.It Ev https_proxy , HTTPS_PROXY , ALL_PROXY , NO_PROXY
How hosts of the API are reached, as for
.Xr curl 1 .
.It Ev DBUS_SYSTEM_BUS_ADDRESS
The bus on which
.Ic location
finds the service of positions.
.El
.Sh FILES
.Bl -tag -width Ds
.It Pa $XDG_DATA_HOME/nimbuscope/standard.sqlite
The standard store.
.It Pa $XDG_DATA_HOME/nimbuscope/SUITE.sqlite
The store of a suite, such as the application group, which holds places, preferences, hosts and credentials.
.El
.Sh EXIT STATUS
.Bl -tag -width Ds
.It 0
Done.
.It 1
The data or the operation failed, which is said in one line on standard error:
.D1 nimbuscope: WHAT: WHY
.It 2
The command line is wrong.
.El
.Sh EXAMPLES
Save a place, and see what a widget would show:
.Bd -literal -offset indent
nimbuscope places add \-\-name Sydney \-\-latitude \-33.8688 \-\-longitude 151.2093
nimbuscope intents defaultLocation WeatherRadarMapIntent \-\-json
.Ed
.Pp
Draw all tiles of a directory, on all processors:
.Dl nimbuscope tile render tiles \-\-out\-dir pictures \-\-scheme 13
.Pp
Draw a colour scheme and its legend:
.Bd -literal -offset indent
nimbuscope palette render 21 \-o nexrad.png
nimbuscope palette legend 21 \-\-type Rain \-o legend.png
.Ed
.Sh SEE ALSO
.Xr NimbuscopeIntentHandler 1
)";

}  // namespace nimbuscope::tool
