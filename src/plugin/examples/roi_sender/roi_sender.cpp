// Sends the means of the ROIs to another program on this computer, such as one that presents
// stimuli: at each volume one UDP datagram, a line of JSON. roi_receiver.py shows them.
//
//     {"volume": 12, "condition": 1, "rois": [1043.25, 988.5]}
//
// Volumes count from 1, conditions from 0; the means are in units of the data, in the order of the
// ROIs. Nobody needs to listen: what isn't received is lost, and the run never waits.
// SPDX-License-Identifier: GPL-3.0-or-later
#include <velo_cortivo_plugin.h>

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <locale>
#include <netinet/in.h>
#include <sstream>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace {

class RoiSender : public VeloCortivoPlugin {
public:
    ~RoiSender() override {
        if (socket_ >= 0)
            close(socket_);
    }

    bool initPlugin() override {
        const int lowest = 1024, highest = 65535;
        const int port =
            tGetIntegerInput("UDP port of the receiver on this computer:", 50200, lowest, highest);
        if (port < lowest)
            return false; // cancelled
        receiver_.sin_family = AF_INET;
        receiver_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        receiver_.sin_port = htons(static_cast<unsigned short>(port));
        socket_ = socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        if (socket_ < 0)
            tMessageBox((std::string("No socket: ") + std::strerror(errno)).c_str());
        return socket_ >= 0;
    }

    bool executeAtLaunch() override {
        tLogText(("Sending to port " + std::to_string(ntohs(receiver_.sin_port)) + ".").c_str());
        return true;
    }

    void executeAfterVolume() override {
        const std::string line = message();
        if (sendto(socket_, line.data(), line.size(), 0,
                   reinterpret_cast<const sockaddr*>(&receiver_), sizeof receiver_) < 0)
            tLogText((std::string("Not sent: ") + std::strerror(errno)).c_str());
    }

private:
    static std::string message() {
        std::ostringstream text;
        text.imbue(std::locale::classic()); // a decimal point in every country
        text.precision(9);                  // enough for the exact float
        text << "{\"volume\": " << tGetCurrentTimePoint()
             << ", \"condition\": " << tGetCurrentProtocolCondition() << ", \"rois\": [";
        for (int roi = 0; roi < tGetNrOfROIs(); ++roi)
            text << (roi > 0 ? ", " : "") << tGetMeanOfROI(roi);
        text << "]}\n";
        return text.str();
    }

    int socket_ = -1;
    sockaddr_in receiver_ = sockaddr_in();
};

} // namespace

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "ROI Sender";
}

VELO_CORTIVO_EXPORT const char* getPluginDescription() {
    return "Sends volume, condition and the means of the ROIs to another program (UDP, JSON).";
}

VELO_CORTIVO_EXPORT const char* getAuthor() {
    return "Velo-Cortivo developers";
}

VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    return new RoiSender;
}
