// The client framework of the modem-statistics service.
#pragma once
